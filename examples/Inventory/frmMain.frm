VERSION 5.00
Begin VB.Form frmMain 
   Caption         =   "Inventory"
   ClientHeight    =   3195
   ClientLeft      =   60
   ClientTop       =   345
   ClientWidth     =   4680
   LinkTopic       =   "Form1"
   ScaleHeight     =   3195
   ScaleWidth      =   4680
   StartUpPosition =   3  'Windows Default
   Begin VB.CommandButton cmdRefresh 
      Caption         =   "&Refresh"
      Height          =   495
      Left            =   120
      TabIndex        =   0
      Top             =   120
      Width           =   1215
   End
   Begin VB.ListBox lstItems 
      BeginProperty Font 
         Name            =   "Tahoma"
         Size            =   8.25
      EndProperty
      Height          =   2205
      Left            =   120
      TabIndex        =   1
      Top             =   720
      Width           =   4335
   End
End
Attribute VB_Name = "frmMain"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
Option Explicit

Private m_Warehouse As clsWarehouse

Private Sub Form_Load()
    Set m_Warehouse = New clsWarehouse
    m_Warehouse.Load "stock.csv"
    RefreshList
End Sub

Private Sub cmdRefresh_Click()
    RefreshList
End Sub

Private Sub RefreshList()
    Dim i As Long
    lstItems.Clear
    For i = 1 To m_Warehouse.Count
        With m_Warehouse.Item(i)
            If .Quantity < .ReorderLevel Then
                lstItems.AddItem .Name & " (reorder)"
            ElseIf .Quantity = 0 Then
                lstItems.AddItem .Name & " (out of stock)"
            Else
                lstItems.AddItem .Name
            End If
        End With
    Next i
End Sub
