"""The documented enumerations, and their values by name."""
# Made by generate.py from the type description of the library; changes by hand get lost.
import enum

__all__ = [
    "xigImageTypes",
    "imggTypeSC",
    "imggTypeDXIntraOral",
    "imggTypeVLEndoscopic",
    "imggTypeVLMicroscopic",
    "imggTypeDXPanoramic",
    "imggTypeDXCephalometric",
    "imggTypeDXGeneral",
    "imggTypeDXSkull",
    "imggTypeVLPhotographic",
    "imggTypeNone",
    "imggTypeGeneralObject",
    "DoctorType",
    "drt_Unknown",
    "drt_Local",
    "drt_Remote",
    "drt_Web",
    "gdcmObjectLocation",
    "gdcmObjectLocUnknown",
    "gdcmObjectLocLocal",
    "gdcmObjectLocServer",
    "gdcmObjectLocBoth",
    "gGlobalListIDs",
    "gglID_DeveloperFKeys",
    "gglID_VersionStatus",
    "gglID_DicomServer",
    "gglID_DicomRootUID",
    "gglID_LoginMethod",
    "gglID_ImageFormat",
    "gglID_CIDCodes",
    "gglID_TemplateRegionRelationship",
    "gglID_DicomClientAEAndPortPerWSName",
    "gglID_SecuritySettings",
    "gglID_MaintenanceFlags",
    "gglID_SecurityGroups",
    "gglID_PromptOnTemplateSelection",
    "gglID_MaintServerClient",
    "gglID_SkipTSChangePrompt",
    "gglID_SwipeCardOptions",
    "gglID_LogSelections",
    "gglID_HashedPasswords",
    "gglID_ApproveOverwritesReferrer",
    "gglID_CropAllowed",
    "gglID_DeleteReasons",
    "gglID_PromptForDeleteReason",
    "ImageOwnerOjectTypes",
    "iootUnknown",
    "iootPatient",
    "iootImageCard",
    "iootSeries",
    "ManipulationType",
    "ManCosmetic",
    "Manbrightness",
    "ManContrast",
    "ManInvert",
    "ManColorize",
    "ManRotate",
    "ManMirror",
    "ManSharpen",
    "ManBitmap",
    "ManPosResize",
    "UndoStop",
    "ManLeftFocus",
    "ManGotfocus",
    "ManICResize",
    "Delete",
    "ManAttCorr",
    "ManMedian",
    "ManEmboss",
    "ManEdgeEnhance",
    "ManAnnBurn",
    "ManEnhanceFilter",
    "ManCrop",
    "CardTypes",
    "ctUnknown",
    "ctImagecard",
    "ctseries",
    "AnaDescType",
    "adtIntraOral",
    "adtGeneralDX",
    "adtAll",
    "gtFuncs",
    "gtMWLQuery",
    "gtGetRespPerson",
    "gtShowObject",
    "gtGetSessionInfo",
    "CIDTypes",
    "cidtRegionIO",
    "cidtRegionDX",
    "cidtModifierIO",
    "cidtModifierDX",
    "cidtOther",
    "CursorLocationEnum",
    "adUseNone",
    "adUseServer",
    "adUseClient",
    "CursorTypeEnum",
    "adOpenUnspecified",
    "adOpenForwardOnly",
    "adOpenKeyset",
    "adOpenDynamic",
    "adOpenStatic",
    "LockTypeEnum",
    "adLockUnspecified",
    "adLockReadOnly",
    "adLockPessimistic",
    "adLockOptimistic",
    "adLockBatchOptimistic",
    "CommandTypeEnum",
    "adCmdUnspecified",
    "adCmdText",
    "adCmdTable",
    "adCmdUnknown",
    "adExecuteNoRecords",
    "ObjectStateEnum",
    "adStateClosed",
    "adStateOpen",
    "EditModeEnum",
    "adEditNone",
    "adEditInProgress",
    "adEditAdd",
    "AffectEnum",
    "adAffectCurrent",
    "adAffectGroup",
    "adAffectAll",
    "PositionEnum",
    "adPosUnknown",
    "adPosBOF",
    "adPosEOF",
    "EventStatusEnum",
    "adStatusOK",
    "adStatusErrorsOccurred",
    "adStatusCantDeny",
    "adStatusCancel",
    "DataTypeEnum",
    "adSmallInt",
    "adInteger",
    "adSingle",
    "adDouble",
    "adDate",
    "adBoolean",
    "adVariant",
    "adBigInt",
    "adVarWChar",
    "adLongVarWChar",
    "adLongVarBinary",
]


class xigImageTypes(enum.IntEnum):
    imggTypeSC = 0
    imggTypeDXIntraOral = 1
    imggTypeVLEndoscopic = 2
    imggTypeVLMicroscopic = 3
    imggTypeDXPanoramic = 4
    imggTypeDXCephalometric = 5
    imggTypeDXGeneral = 6
    imggTypeDXSkull = 7
    imggTypeVLPhotographic = 8
    imggTypeNone = 32000
    imggTypeGeneralObject = 32767


imggTypeSC = xigImageTypes.imggTypeSC
imggTypeDXIntraOral = xigImageTypes.imggTypeDXIntraOral
imggTypeVLEndoscopic = xigImageTypes.imggTypeVLEndoscopic
imggTypeVLMicroscopic = xigImageTypes.imggTypeVLMicroscopic
imggTypeDXPanoramic = xigImageTypes.imggTypeDXPanoramic
imggTypeDXCephalometric = xigImageTypes.imggTypeDXCephalometric
imggTypeDXGeneral = xigImageTypes.imggTypeDXGeneral
imggTypeDXSkull = xigImageTypes.imggTypeDXSkull
imggTypeVLPhotographic = xigImageTypes.imggTypeVLPhotographic
imggTypeNone = xigImageTypes.imggTypeNone
imggTypeGeneralObject = xigImageTypes.imggTypeGeneralObject


class DoctorType(enum.IntEnum):
    drt_Unknown = 0
    drt_Local = 1
    drt_Remote = 2
    drt_Web = 3


drt_Unknown = DoctorType.drt_Unknown
drt_Local = DoctorType.drt_Local
drt_Remote = DoctorType.drt_Remote
drt_Web = DoctorType.drt_Web


class gdcmObjectLocation(enum.IntEnum):
    gdcmObjectLocUnknown = 0
    gdcmObjectLocLocal = 1
    gdcmObjectLocServer = 2
    gdcmObjectLocBoth = 3


gdcmObjectLocUnknown = gdcmObjectLocation.gdcmObjectLocUnknown
gdcmObjectLocLocal = gdcmObjectLocation.gdcmObjectLocLocal
gdcmObjectLocServer = gdcmObjectLocation.gdcmObjectLocServer
gdcmObjectLocBoth = gdcmObjectLocation.gdcmObjectLocBoth


class gGlobalListIDs(enum.IntEnum):
    gglID_DeveloperFKeys = 1
    gglID_VersionStatus = 2
    gglID_DicomServer = 3
    gglID_DicomRootUID = 4
    gglID_LoginMethod = 5
    gglID_ImageFormat = 6
    gglID_CIDCodes = 7
    gglID_TemplateRegionRelationship = 8
    gglID_DicomClientAEAndPortPerWSName = 9
    gglID_SecuritySettings = 10
    gglID_MaintenanceFlags = 11
    gglID_SecurityGroups = 12
    gglID_PromptOnTemplateSelection = 13
    gglID_MaintServerClient = 14
    gglID_SkipTSChangePrompt = 15
    gglID_SwipeCardOptions = 16
    gglID_LogSelections = 17
    gglID_HashedPasswords = 18
    gglID_ApproveOverwritesReferrer = 19
    gglID_CropAllowed = 20
    gglID_DeleteReasons = 21
    gglID_PromptForDeleteReason = 22


gglID_DeveloperFKeys = gGlobalListIDs.gglID_DeveloperFKeys
gglID_VersionStatus = gGlobalListIDs.gglID_VersionStatus
gglID_DicomServer = gGlobalListIDs.gglID_DicomServer
gglID_DicomRootUID = gGlobalListIDs.gglID_DicomRootUID
gglID_LoginMethod = gGlobalListIDs.gglID_LoginMethod
gglID_ImageFormat = gGlobalListIDs.gglID_ImageFormat
gglID_CIDCodes = gGlobalListIDs.gglID_CIDCodes
gglID_TemplateRegionRelationship = gGlobalListIDs.gglID_TemplateRegionRelationship
gglID_DicomClientAEAndPortPerWSName = gGlobalListIDs.gglID_DicomClientAEAndPortPerWSName
gglID_SecuritySettings = gGlobalListIDs.gglID_SecuritySettings
gglID_MaintenanceFlags = gGlobalListIDs.gglID_MaintenanceFlags
gglID_SecurityGroups = gGlobalListIDs.gglID_SecurityGroups
gglID_PromptOnTemplateSelection = gGlobalListIDs.gglID_PromptOnTemplateSelection
gglID_MaintServerClient = gGlobalListIDs.gglID_MaintServerClient
gglID_SkipTSChangePrompt = gGlobalListIDs.gglID_SkipTSChangePrompt
gglID_SwipeCardOptions = gGlobalListIDs.gglID_SwipeCardOptions
gglID_LogSelections = gGlobalListIDs.gglID_LogSelections
gglID_HashedPasswords = gGlobalListIDs.gglID_HashedPasswords
gglID_ApproveOverwritesReferrer = gGlobalListIDs.gglID_ApproveOverwritesReferrer
gglID_CropAllowed = gGlobalListIDs.gglID_CropAllowed
gglID_DeleteReasons = gGlobalListIDs.gglID_DeleteReasons
gglID_PromptForDeleteReason = gGlobalListIDs.gglID_PromptForDeleteReason


class ImageOwnerOjectTypes(enum.IntEnum):
    iootUnknown = 0
    iootPatient = 1
    iootImageCard = 2
    iootSeries = 3


iootUnknown = ImageOwnerOjectTypes.iootUnknown
iootPatient = ImageOwnerOjectTypes.iootPatient
iootImageCard = ImageOwnerOjectTypes.iootImageCard
iootSeries = ImageOwnerOjectTypes.iootSeries


class ManipulationType(enum.IntEnum):
    ManCosmetic = 1
    Manbrightness = 2
    ManContrast = 3
    ManInvert = 4
    ManColorize = 5
    ManRotate = 6
    ManMirror = 7
    ManSharpen = 8
    ManBitmap = 9
    ManPosResize = 10
    UndoStop = 11
    ManLeftFocus = 12
    ManGotfocus = 13
    ManICResize = 14
    Delete = 15
    ManAttCorr = 16
    ManMedian = 17
    ManEmboss = 18
    ManEdgeEnhance = 19
    ManAnnBurn = 20
    ManEnhanceFilter = 21
    ManCrop = 22


ManCosmetic = ManipulationType.ManCosmetic
Manbrightness = ManipulationType.Manbrightness
ManContrast = ManipulationType.ManContrast
ManInvert = ManipulationType.ManInvert
ManColorize = ManipulationType.ManColorize
ManRotate = ManipulationType.ManRotate
ManMirror = ManipulationType.ManMirror
ManSharpen = ManipulationType.ManSharpen
ManBitmap = ManipulationType.ManBitmap
ManPosResize = ManipulationType.ManPosResize
UndoStop = ManipulationType.UndoStop
ManLeftFocus = ManipulationType.ManLeftFocus
ManGotfocus = ManipulationType.ManGotfocus
ManICResize = ManipulationType.ManICResize
Delete = ManipulationType.Delete
ManAttCorr = ManipulationType.ManAttCorr
ManMedian = ManipulationType.ManMedian
ManEmboss = ManipulationType.ManEmboss
ManEdgeEnhance = ManipulationType.ManEdgeEnhance
ManAnnBurn = ManipulationType.ManAnnBurn
ManEnhanceFilter = ManipulationType.ManEnhanceFilter
ManCrop = ManipulationType.ManCrop


class CardTypes(enum.IntEnum):
    ctUnknown = 0
    ctImagecard = 1
    ctseries = 2


ctUnknown = CardTypes.ctUnknown
ctImagecard = CardTypes.ctImagecard
ctseries = CardTypes.ctseries


class AnaDescType(enum.IntEnum):
    adtIntraOral = 0
    adtGeneralDX = 1
    adtAll = 999


adtIntraOral = AnaDescType.adtIntraOral
adtGeneralDX = AnaDescType.adtGeneralDX
adtAll = AnaDescType.adtAll


class gtFuncs(enum.IntEnum):
    gtMWLQuery = 0
    gtGetRespPerson = 1
    gtShowObject = 2
    gtGetSessionInfo = 3


gtMWLQuery = gtFuncs.gtMWLQuery
gtGetRespPerson = gtFuncs.gtGetRespPerson
gtShowObject = gtFuncs.gtShowObject
gtGetSessionInfo = gtFuncs.gtGetSessionInfo


class CIDTypes(enum.IntEnum):
    cidtRegionIO = 0
    cidtRegionDX = 1
    cidtModifierIO = 2
    cidtModifierDX = 3
    cidtOther = 999


cidtRegionIO = CIDTypes.cidtRegionIO
cidtRegionDX = CIDTypes.cidtRegionDX
cidtModifierIO = CIDTypes.cidtModifierIO
cidtModifierDX = CIDTypes.cidtModifierDX
cidtOther = CIDTypes.cidtOther


class CursorLocationEnum(enum.IntEnum):
    adUseNone = 1
    adUseServer = 2
    adUseClient = 3


adUseNone = CursorLocationEnum.adUseNone
adUseServer = CursorLocationEnum.adUseServer
adUseClient = CursorLocationEnum.adUseClient


class CursorTypeEnum(enum.IntEnum):
    adOpenUnspecified = -1
    adOpenForwardOnly = 0
    adOpenKeyset = 1
    adOpenDynamic = 2
    adOpenStatic = 3


adOpenUnspecified = CursorTypeEnum.adOpenUnspecified
adOpenForwardOnly = CursorTypeEnum.adOpenForwardOnly
adOpenKeyset = CursorTypeEnum.adOpenKeyset
adOpenDynamic = CursorTypeEnum.adOpenDynamic
adOpenStatic = CursorTypeEnum.adOpenStatic


class LockTypeEnum(enum.IntEnum):
    adLockUnspecified = -1
    adLockReadOnly = 1
    adLockPessimistic = 2
    adLockOptimistic = 3
    adLockBatchOptimistic = 4


adLockUnspecified = LockTypeEnum.adLockUnspecified
adLockReadOnly = LockTypeEnum.adLockReadOnly
adLockPessimistic = LockTypeEnum.adLockPessimistic
adLockOptimistic = LockTypeEnum.adLockOptimistic
adLockBatchOptimistic = LockTypeEnum.adLockBatchOptimistic


class CommandTypeEnum(enum.IntEnum):
    adCmdUnspecified = -1
    adCmdText = 1
    adCmdTable = 2
    adCmdUnknown = 8
    adExecuteNoRecords = 128


adCmdUnspecified = CommandTypeEnum.adCmdUnspecified
adCmdText = CommandTypeEnum.adCmdText
adCmdTable = CommandTypeEnum.adCmdTable
adCmdUnknown = CommandTypeEnum.adCmdUnknown
adExecuteNoRecords = CommandTypeEnum.adExecuteNoRecords


class ObjectStateEnum(enum.IntEnum):
    adStateClosed = 0
    adStateOpen = 1


adStateClosed = ObjectStateEnum.adStateClosed
adStateOpen = ObjectStateEnum.adStateOpen


class EditModeEnum(enum.IntEnum):
    adEditNone = 0
    adEditInProgress = 1
    adEditAdd = 2


adEditNone = EditModeEnum.adEditNone
adEditInProgress = EditModeEnum.adEditInProgress
adEditAdd = EditModeEnum.adEditAdd


class AffectEnum(enum.IntEnum):
    adAffectCurrent = 1
    adAffectGroup = 2
    adAffectAll = 3


adAffectCurrent = AffectEnum.adAffectCurrent
adAffectGroup = AffectEnum.adAffectGroup
adAffectAll = AffectEnum.adAffectAll


class PositionEnum(enum.IntEnum):
    adPosUnknown = -1
    adPosBOF = -2
    adPosEOF = -3


adPosUnknown = PositionEnum.adPosUnknown
adPosBOF = PositionEnum.adPosBOF
adPosEOF = PositionEnum.adPosEOF


class EventStatusEnum(enum.IntEnum):
    adStatusOK = 1
    adStatusErrorsOccurred = 2
    adStatusCantDeny = 3
    adStatusCancel = 4


adStatusOK = EventStatusEnum.adStatusOK
adStatusErrorsOccurred = EventStatusEnum.adStatusErrorsOccurred
adStatusCantDeny = EventStatusEnum.adStatusCantDeny
adStatusCancel = EventStatusEnum.adStatusCancel


class DataTypeEnum(enum.IntEnum):
    adSmallInt = 2
    adInteger = 3
    adSingle = 4
    adDouble = 5
    adDate = 7
    adBoolean = 11
    adVariant = 12
    adBigInt = 20
    adVarWChar = 202
    adLongVarWChar = 203
    adLongVarBinary = 205


adSmallInt = DataTypeEnum.adSmallInt
adInteger = DataTypeEnum.adInteger
adSingle = DataTypeEnum.adSingle
adDouble = DataTypeEnum.adDouble
adDate = DataTypeEnum.adDate
adBoolean = DataTypeEnum.adBoolean
adVariant = DataTypeEnum.adVariant
adBigInt = DataTypeEnum.adBigInt
adVarWChar = DataTypeEnum.adVarWChar
adLongVarWChar = DataTypeEnum.adLongVarWChar
adLongVarBinary = DataTypeEnum.adLongVarBinary
