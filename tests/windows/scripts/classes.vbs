' Each public class is created by its name, and says by its type information what it is.
Dim names, name, made
names = Array("Class1", "cComments", "cAnatomics", "cDoctor", "cDoctors", "cGlobalList", "cGlobalLists", "cImagecard", _
    "cImagecardAttribute", "cMWLItem", "cPatient", "cStringItem", "cStudy", "cTeeth", "cTemplate", "cTemplateAttribute", _
    "cTooth", "IntendedRecipients", "OtherPatIDs", "cAnatomicDescription", "cImageManipulation", "cUniCard", "cImages", _
    "cUniCards", "cImage", "cSerie", "cClinic", "cClinics")
Check "classes", 27, UBound(names)
For Each name In names
    Set made = CreateObject("OXClass." & name)
    Check name, "_" & name, TypeName(made)
Next
For Each name In Array("Collection", "Connection", "Recordset")
    Set made = CreateObject("OXPlatform." & name)
    Check name, True, IsObject(made)
Next
On Error Resume Next
Set made = Nothing
Set made = CreateObject("OXClass.cDentist")
Check "an unknown class", True, Err.Number <> 0
Check "is not created", True, made Is Nothing
Done
