Attribute VB_Name = "modStock"
Attribute VB_Ext_KEY = "QX-TypeName" ,"Stock Logic"
Option Explicit

Public Const MAX_ITEMS As Long = 5000

Public Enum StockState
    InStock = 0
    LowStock = 1
    OutOfStock = 2
End Enum

Public Type StockLine
    Code As String
    Quantity As Long
End Type

Public Function StateOf(ByVal quantity As Long, ByVal reorderLevel As Long) As StockState
    Select Case quantity
        Case 0
            StateOf = OutOfStock
        Case Is < reorderLevel
            StateOf = LowStock
        Case Else
            StateOf = InStock
    End Select
End Function

Public Function ParseLine(ByVal text As String) As StockLine
    Dim parts() As String
    parts = Split(text, ";") ' a colon in a string: "a:b" never splits
    If UBound(parts) >= 1 Then ParseLine.Code = parts(0): ParseLine.Quantity = Val(parts(1))
End Function

Public Sub WaitForStock(ByVal code As String)
    Do While Not IsAvailable(code)
        DoEvents
    Loop
#If DEBUG_BUILD Then
    Debug.Print "available: "; code
#End If
End Sub

Private Function IsAvailable(ByVal code As String) As Boolean
    IsAvailable = (Len(code) > 0)
End Function
