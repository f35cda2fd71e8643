VERSION 5.00
Begin VB.UserControl ctlGauge 
   ClientHeight    =   600
   ClientLeft      =   0
   ClientTop       =   0
   ClientWidth     =   2400
   ScaleHeight     =   600
   ScaleWidth      =   2400
End
Attribute VB_Name = "ctlGauge"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = True
Attribute VB_PredeclaredId = False
Attribute VB_Exposed = False
Option Explicit

Private mValue As Single

Public Property Let Value(ByVal newValue As Single)
    If newValue < 0 Then newValue = 0
    If newValue > 1 Then newValue = 1
    mValue = newValue
    UserControl.Refresh
End Property

Private Sub UserControl_Paint()
    UserControl.Line (0, 0)-(mValue * ScaleWidth, ScaleHeight), vbGreen, BF
End Sub
