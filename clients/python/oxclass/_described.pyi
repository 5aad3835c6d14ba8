"""The classes of the library and of its host, for editors and type checkers."""
# Made by generate.py from the type description of the library; changes by hand get lost.
import builtins
import datetime
import typing

from . import _described as classes
from . import _enumerations as enumerations
from . import ByRef, Object


class Class1(Object):
    """The general services: storage roots, sub-folders of patients, settings and DICOM UIDs."""
    @builtins.property
    def ActiveRootID(self) -> builtins.int:
        """The number of the active storage root; 0 until GetRoots has read it."""
    @ActiveRootID.setter
    def ActiveRootID(self, Value: builtins.int) -> None: ...
    def GetRoots(self, Con: typing.Optional[classes.Connection]) -> typing.Any:
        """Returns the directories of all storage roots as an array of texts, the active root first.

        Arguments:
            Con: The open connection to the database.
        """
    def GetSubFolder(self, PatID: builtins.int) -> builtins.str:
        """Returns a patient's sub-folder of a storage root: 0_ for keys up to 499, 500_ up to 999.

        Arguments:
            PatID: The key of the patient, cPatient.ID; a negative one returns 0_.
        """
    def SaveGLSetting(self, Con: typing.Optional[classes.Connection], GLId: typing.Union[enumerations.gGlobalListIDs, builtins.int], sSetting: builtins.str, bReplace: builtins.bool) -> None:
        """Stores a setting as a new row of a list.

        Arguments:
            Con: The open connection to the database.
            GLId: The number of the list.
            sSetting: The text of the setting.
            bReplace: True deletes the earlier rows of the list first; false keeps them.
        """
    def GetGLSetting(self, Con: typing.Optional[classes.Connection], GLId: typing.Union[enumerations.gGlobalListIDs, builtins.int], sFirstSetting: typing.Union[builtins.str, ByRef[builtins.str]], cAllGLs: typing.Union[typing.Optional[classes.cGlobalLists], ByRef[classes.cGlobalLists]] = ...) -> builtins.bool:
        """Reads the first text of a list; returns false if the list is empty.

        Arguments:
            Con: The open connection to the database.
            GLId: The number of the list.
            sFirstSetting: Receives the text; for an empty list the default DICOM root UID or the empty text.
            cAllGLs: Receives a new cGlobalLists with all rows of the list.
        """
    def GetRootOnID(self, Con: typing.Optional[classes.Connection], RootId: builtins.int) -> builtins.str:
        """Returns a storage root's directory from the database; the empty text if there is none.

        Arguments:
            Con: The open connection to the database.
            RootId: The number of the storage root; 0 for the active one.
        """
    def GetCachedRootOnID(self, Con: typing.Optional[classes.Connection], RootId: builtins.int, bFlushCache: builtins.bool) -> builtins.str:
        """Returns a storage root's directory from this object's cache, or reads it from the database.

        Arguments:
            Con: The open connection to the database; not used if the cache has the directory.
            RootId: The number of the storage root; 0 for the active one.
            bFlushCache: True empties the cache first, so that a change in the database is seen.
        """
    def GetInstanceUID(self, Con: typing.Optional[classes.Connection]) -> builtins.str:
        """Returns a new DICOM UID of at most 64 characters; it begins with the root UID setting.

        Arguments:
            Con: The open connection to the database; not used once the thread has read the root UID.
        """


class cComments(Object):
    """The signed and dated comments of an image."""
    def Add(self, str: builtins.str, ID: builtins.int, DateStamp: datetime.date, Signature: builtins.str, sKey: builtins.str = ...) -> classes.cStringItem:
        """Creates a comment that is not stored yet, adds it at the end and returns it.

        Arguments:
            str: The text, of which 150 characters are stored.
            ID: The key of the image.
            DateStamp: The date and time of the comment.
            Signature: The name of the author, of which 150 characters are stored.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cStringItem:
        """Returns a comment of the collection.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of comments in the collection."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes a comment from the collection; a stored comment stays in the database.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """Returns an enumerator of the members, in their order."""
    def AddObj(self, Obj: typing.Optional[classes.cStringItem], Index: builtins.int, sKey: builtins.str = ...) -> None:
        """Inserts an existing comment before a position.

        Arguments:
            Obj: The comment; the collection refers to it and makes no copy.
            Index: The position, from 1; ignored if the collection and sKey are empty.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def __call__(self, vntIndexKey: typing.Any) -> classes.cStringItem:
        """Returns a comment of the collection.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    def __getitem__(self, key: typing.Any) -> classes.cStringItem: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cStringItem]: ...


class cAnatomics(Object):
    """A class without members, kept for programs that create it."""


class cDoctor(Object):
    """A person who can be responsible for patients."""
    def GetDCMName(self) -> builtins.str:
        """Returns the name in the DICOM form Last^First^^Prefix, or DrName if these are empty."""
    def PatientCount(self, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Returns the number of patients for whom this doctor is responsible.

        Arguments:
            Con: The open connection to the database.
        """
    def DeleteDoctor(self, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Deletes the row of drID; returns true even if there is none. Patients keep the number.

        Arguments:
            Con: The open connection to the database.
        """
    def SaveDoctor(self, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Writes the row of drID, or a new row if there is none. Sets drID and returns true.

        Arguments:
            Con: The open connection to the database.
        """
    def LoadDoctor(self, drID: builtins.int, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Loads a doctor by number; false if there is none. Assigns and saves a missing GUID.

        Arguments:
            drID: The number of the doctor.
            Con: The open connection to the database.
        """
    @builtins.property
    def DrType(self) -> enumerations.DoctorType:
        """The relation to the clinic: 0 unknown, 1 local, 2 remote, 3 web."""
    @DrType.setter
    def DrType(self, Value: typing.Union[enumerations.DoctorType, builtins.int]) -> None: ...
    @builtins.property
    def DrContactInfo(self) -> builtins.str:
        """The contact details as one text; at most 255 characters are stored."""
    @DrContactInfo.setter
    def DrContactInfo(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DrPrefix(self) -> builtins.str:
        """The title before the name; at most 20 characters are stored."""
    @DrPrefix.setter
    def DrPrefix(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DrLastName(self) -> builtins.str:
        """The family name; at most 60 characters are stored."""
    @DrLastName.setter
    def DrLastName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DrFirstName(self) -> builtins.str:
        """The given name; at most 60 characters are stored."""
    @DrFirstName.setter
    def DrFirstName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DrName(self) -> builtins.str:
        """The short name or display name; at most 30 characters are stored."""
    @DrName.setter
    def DrName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def drID(self) -> builtins.int:
        """The number of the doctor, which the database assigns; 0 if it isn't stored."""
    @drID.setter
    def drID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def DrLogin(self) -> builtins.str:
        """The login name, at most 255 characters; a save raises an error for a longer one."""
    @DrLogin.setter
    def DrLogin(self, Value: builtins.str) -> None: ...
    @builtins.property
    def drGUID(self) -> builtins.str:
        """The GUID, 32 hexadecimal digits; a load assigns one to a doctor without it."""
    @drGUID.setter
    def drGUID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DrEMail(self) -> builtins.str:
        """The e-mail address, at most 255 characters; a save raises an error for a longer one."""
    @DrEMail.setter
    def DrEMail(self, Value: builtins.str) -> None: ...
    def LoadDoctorOnGUID(self, drGUID: builtins.str, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Loads a doctor by GUID and returns true; returns false if there is none.

        Arguments:
            drGUID: The GUID in upper or lower case; a row that stores lower case isn't found.
            Con: The open connection to the database.
        """


class cDoctors(Object):
    """The doctors as a collection, counted from 1."""
    def GetAllDoctors(self, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Replaces the members by all doctors, sorted by last and first name. Returns their number.

        Arguments:
            Con: The open connection to the database.
        """
    def Add(self, drID: builtins.int, DrName: builtins.str, DrFirstName: builtins.str, DrLastName: builtins.str, DrPrefix: builtins.str, DrContactInfo: builtins.str, DrType: typing.Union[enumerations.DoctorType, builtins.int], sKey: builtins.str = ...) -> classes.cDoctor:
        """Creates a doctor with these values, adds it at the end and returns it; stores nothing.

        Arguments:
            drID: The number of the doctor; 0 if it isn't stored.
            DrName: The short name or display name.
            DrFirstName: The given name.
            DrLastName: The family name.
            DrPrefix: The title before the name.
            DrContactInfo: The contact details as one text.
            DrType: The relation to the clinic: 0 unknown, 1 local, 2 remote, 3 web.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cDoctor:
        """Returns a doctor; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position from 1, or the key; after GetAllDoctors the key is K and the drID.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of doctors in the collection."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes a doctor from this collection; the row stays in the database.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """An enumerator over the doctors, for a For Each loop."""
    def GetGUID(self) -> builtins.str:
        """Returns a new GUID as 32 upper-case hexadecimal digits; the empty text after a failure."""
    def __call__(self, vntIndexKey: typing.Any) -> classes.cDoctor:
        """Returns a doctor; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position from 1, or the key; after GetAllDoctors the key is K and the drID.
        """
    def __getitem__(self, key: typing.Any) -> classes.cDoctor: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cDoctor]: ...


class cGlobalList(Object):
    """One text of a list in the database; a setting is the first text of its list."""
    @builtins.property
    def GLSaved(self) -> builtins.bool:
        """True if the row is in the database; Save then updates it, and inserts it otherwise."""
    @GLSaved.setter
    def GLSaved(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def GlobalListID(self) -> builtins.int:
        """The key of the row, which the database assigns; 0 before the first save."""
    @GlobalListID.setter
    def GlobalListID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ListID(self) -> enumerations.gGlobalListIDs:
        """The number of the list that the text belongs to; 0 in a new object."""
    @ListID.setter
    def ListID(self, Value: typing.Union[enumerations.gGlobalListIDs, builtins.int]) -> None: ...
    @builtins.property
    def ListText(self) -> builtins.str:
        """The text itself, or the value of the setting."""
    @ListText.setter
    def ListText(self, Value: builtins.str) -> None: ...
    def Save(self, sConn: typing.Optional[classes.Connection]) -> builtins.bool:
        """Writes the row. Always returns false; GLSaved is true if the row is stored.

        Arguments:
            sConn: The open connection to the database.
        """
    def Delete(self, sConn: typing.Optional[classes.Connection]) -> builtins.bool:
        """Deletes the row if GLSaved is true. Always returns true and keeps the members.

        Arguments:
            sConn: The open connection to the database.
        """
    def GetGL(self, sConn: typing.Optional[classes.Connection], GlobalListID: builtins.int) -> builtins.bool:
        """Loads a row by its key and returns true; returns false if there is none.

        Arguments:
            sConn: The open connection to the database.
            GlobalListID: The key of the row.
        """


class cGlobalLists(Object):
    """The rows of one list of settings or texts, counted from 1."""
    def GetAllGLs(self, sConn: typing.Optional[classes.Connection], ListID: typing.Union[enumerations.gGlobalListIDs, builtins.int]) -> builtins.int:
        """Replaces the members by all rows of a list and returns their number.

        Arguments:
            sConn: The open connection to the database.
            ListID: The number of the list.
        """
    def Add(self, sKey: builtins.str = ...) -> classes.cGlobalList:
        """Creates a row, inserts it before all other members and returns it; stores nothing.

        Arguments:
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cGlobalList:
        """Returns a row; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of members; 0 before a list is loaded."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes a member from this collection; its row stays in the database.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """An enumerator over the rows, for a For Each loop."""
    def DeleteAllOnListID(self, cnconn: typing.Optional[classes.Connection], lID: typing.Union[enumerations.gGlobalListIDs, builtins.int]) -> None:
        """Deletes all rows of a list from the database; the members of this collection stay.

        Arguments:
            cnconn: The open connection to the database.
            lID: The number of the list.
        """
    def DeleteAll(self, cnconn: typing.Optional[classes.Connection]) -> None:
        """Deletes the rows of all members from the database and removes the members.

        Arguments:
            cnconn: The open connection to the database.
        """
    def __getitem__(self, key: typing.Any) -> classes.cGlobalList: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cGlobalList]: ...


class cImagecard(Object):
    """An image card: a named page on which images of one patient are placed."""
    @builtins.property
    def ImagecardAttributes(self) -> classes.Collection:
        """The placed images, as a collection of cImagecardAttribute; the key of a loaded one is K and its ID."""
    @ImagecardAttributes.setter
    def ImagecardAttributes(self, Value: typing.Optional[Object]) -> None: ...
    @builtins.property
    def ICWidth(self) -> builtins.int:
        """The width of the canvas in pixels."""
    @ICWidth.setter
    def ICWidth(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ICHeight(self) -> builtins.int:
        """The height of the canvas in pixels."""
    @ICHeight.setter
    def ICHeight(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ICDescription(self) -> builtins.str:
        """The description, as free text."""
    @ICDescription.setter
    def ICDescription(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ICLastUpdate(self) -> datetime.datetime:
        """The date and time of the last change, as the client sets it; a save does not change it."""
    @ICLastUpdate.setter
    def ICLastUpdate(self, Value: datetime.date) -> None: ...
    @builtins.property
    def ICCreateDate(self) -> datetime.datetime:
        """The date and time of creation, as the client sets it; stored for new image cards only."""
    @ICCreateDate.setter
    def ICCreateDate(self, Value: datetime.date) -> None: ...
    @builtins.property
    def ICName(self) -> builtins.str:
        """The name, at most 255 characters."""
    @ICName.setter
    def ICName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ICPID(self) -> builtins.int:
        """The key of the patient."""
    @ICPID.setter
    def ICPID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ICID(self) -> builtins.int:
        """The key of the image card in the database; 0 if the image card is not stored."""
    @ICID.setter
    def ICID(self, Value: builtins.int) -> None: ...
    def Save(self, conn: typing.Optional[classes.Connection]) -> builtins.bool:
        """Stores the image card, then its placed images, numbered anew from 1. Returns true.

        Arguments:
            conn: The open connection to the database.
        """
    def GetImageCard(self, conn: typing.Optional[classes.Connection], lICID: builtins.int) -> typing.Any:
        """Loads an image card; if there is none, changes nothing. Always returns an empty value.

        Arguments:
            conn: The open connection to the database.
            lICID: The key of the image card.
        """
    def LoadImageAttributes(self, conn: typing.Optional[classes.Connection]) -> builtins.int:
        """Loads the placed images and returns their number; on failure shows a message box and returns 0.

        Arguments:
            conn: The open connection to the database.
        """


class cImagecardAttribute(Object):
    """An image placed on an image card: its position, size, order and manipulations."""
    @builtins.property
    def ToBeDeleted(self) -> builtins.bool:
        """True makes the next save delete the stored row and its manipulations; not stored."""
    @ToBeDeleted.setter
    def ToBeDeleted(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def IAComments(self) -> builtins.str:
        """Free text."""
    @IAComments.setter
    def IAComments(self, Value: builtins.str) -> None: ...
    @builtins.property
    def IASequence(self) -> builtins.int:
        """The order on the image card, from 1; each save of the image card sets it anew."""
    @IASequence.setter
    def IASequence(self, Value: builtins.int) -> None: ...
    @builtins.property
    def IAHeight(self) -> builtins.float:
        """The height, as a fraction of the canvas height."""
    @IAHeight.setter
    def IAHeight(self, Value: builtins.float) -> None: ...
    @builtins.property
    def IAWidth(self) -> builtins.float:
        """The width, as a fraction of the canvas width."""
    @IAWidth.setter
    def IAWidth(self, Value: builtins.float) -> None: ...
    @builtins.property
    def IAPosY(self) -> builtins.float:
        """The distance from the top of the canvas, as a fraction of its height."""
    @IAPosY.setter
    def IAPosY(self, Value: builtins.float) -> None: ...
    @builtins.property
    def IAPosX(self) -> builtins.float:
        """The distance from the left of the canvas, as a fraction of its width."""
    @IAPosX.setter
    def IAPosX(self, Value: builtins.float) -> None: ...
    @builtins.property
    def ImageID(self) -> builtins.int:
        """The key of the image; a save of the image card skips a placed image with 0."""
    @ImageID.setter
    def ImageID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ICID(self) -> builtins.int:
        """The key of the image card."""
    @ICID.setter
    def ICID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the placed image in the database; 0 or below if it is not stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    def Save(self, conn: typing.Optional[classes.Connection]) -> builtins.bool:
        """Stores the placed image and its manipulations, or deletes it if ToBeDeleted is true. Returns true.

        Arguments:
            conn: The open connection to the database.
        """
    @builtins.property
    def Manipulations(self) -> classes.Collection:
        """The manipulations, as a collection of cImageManipulation in their order, without keys."""
    @Manipulations.setter
    def Manipulations(self, Value: typing.Optional[Object]) -> None: ...
    @builtins.property
    def IAMirrRotStatus(self) -> builtins.int:
        """Mirroring and rotation, as a number that the client defines; a null is loaded as 0."""
    @IAMirrRotStatus.setter
    def IAMirrRotStatus(self, Value: builtins.int) -> None: ...
    def LoadImageManipulations(self, conn: typing.Optional[classes.Connection]) -> builtins.bool:
        """Appends the stored manipulations; a second call doubles them. Returns false after a failure.

        Arguments:
            conn: The open connection to the database.
        """
    def SaveManipulations(self, conn: typing.Optional[classes.Connection]) -> None:
        """Replaces the stored manipulations; raises no error, and a failure can lose stored ones.

        Arguments:
            conn: The open connection to the database.
        """


class cMWLItem(Object):
    """One entry of a DICOM modality worklist, held as texts; nothing is stored or checked."""
    @builtins.property
    def Key(self) -> builtins.str:
        """A key that the client assigns to the entry; the library doesn't read it."""
    @Key.setter
    def Key(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DS_URL(self) -> builtins.str:
        """An address that the client assigns to the entry; the library doesn't read it."""
    @DS_URL.setter
    def DS_URL(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientWeight(self) -> builtins.str:
        """The weight of the patient, as text; in kilograms in DICOM."""
    @PatientWeight.setter
    def PatientWeight(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchPerfPhysName(self) -> builtins.str:
        """The name of the physician who is scheduled to perform the procedure step."""
    @SchPerfPhysName.setter
    def SchPerfPhysName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientComments(self) -> builtins.str:
        """Comments on the patient, free text."""
    @PatientComments.setter
    def PatientComments(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchProcStepID(self) -> builtins.str:
        """The identifier of the scheduled procedure step."""
    @SchProcStepID.setter
    def SchProcStepID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def StudyUID(self) -> builtins.str:
        """The DICOM UID of the study, Study Instance UID."""
    @StudyUID.setter
    def StudyUID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def AddPatientHistory(self) -> builtins.str:
        """Additional history of the patient, free text."""
    @AddPatientHistory.setter
    def AddPatientHistory(self, Value: builtins.str) -> None: ...
    @builtins.property
    def OtherPatientID(self) -> builtins.str:
        """The other patient identifiers as one text; OtherPatIDs isn't derived from it."""
    @OtherPatientID.setter
    def OtherPatientID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def EthnicGroup(self) -> builtins.str:
        """The ethnic group of the patient."""
    @EthnicGroup.setter
    def EthnicGroup(self, Value: builtins.str) -> None: ...
    @builtins.property
    def IntendedRecipientsOfResults(self) -> builtins.str:
        """The recipients as one text; IntendedRecipients isn't derived from it."""
    @IntendedRecipientsOfResults.setter
    def IntendedRecipientsOfResults(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ReqProcPrio(self) -> builtins.str:
        """The priority of the requested procedure."""
    @ReqProcPrio.setter
    def ReqProcPrio(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchProcStepLocation(self) -> builtins.str:
        """The location of the scheduled procedure step."""
    @SchProcStepLocation.setter
    def SchProcStepLocation(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchProcStepStatus(self) -> builtins.str:
        """The status of the scheduled procedure step."""
    @SchProcStepStatus.setter
    def SchProcStepStatus(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientAddress(self) -> builtins.str:
        """The address of the patient as one text."""
    @PatientAddress.setter
    def PatientAddress(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientSex(self) -> builtins.str:
        """The sex of the patient; in DICOM M, F or O."""
    @PatientSex.setter
    def PatientSex(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientBirthDate(self) -> builtins.str:
        """The birth date of the patient, as text; any form is accepted."""
    @PatientBirthDate.setter
    def PatientBirthDate(self, Value: builtins.str) -> None: ...
    @builtins.property
    def RefPhysName(self) -> builtins.str:
        """The name of the referring physician."""
    @RefPhysName.setter
    def RefPhysName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ReqProcCodeMeaning(self) -> builtins.str:
        """The meaning of the code of the requested procedure, in words."""
    @ReqProcCodeMeaning.setter
    def ReqProcCodeMeaning(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ReqProcDesc(self) -> builtins.str:
        """The description of the requested procedure, free text."""
    @ReqProcDesc.setter
    def ReqProcDesc(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ProtocolCodeMeaning(self) -> builtins.str:
        """The meaning of the code of the scheduled protocol, in words."""
    @ProtocolCodeMeaning.setter
    def ProtocolCodeMeaning(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchProcStepStartTime(self) -> builtins.str:
        """The start time of the scheduled procedure step, as text; any form is accepted."""
    @SchProcStepStartTime.setter
    def SchProcStepStartTime(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchProcStepDesc(self) -> builtins.str:
        """The description of the scheduled procedure step, free text."""
    @SchProcStepDesc.setter
    def SchProcStepDesc(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Modality(self) -> builtins.str:
        """The kind of device for the procedure step, a DICOM code such as IO, PX or DX."""
    @Modality.setter
    def Modality(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchProcStepStartDate(self) -> builtins.str:
        """The start date of the scheduled procedure step, as text; any form is accepted."""
    @SchProcStepStartDate.setter
    def SchProcStepStartDate(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SchStatAE(self) -> builtins.str:
        """The application entity title of the scheduled station."""
    @SchStatAE.setter
    def SchStatAE(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ReqProcID(self) -> builtins.str:
        """The identifier of the requested procedure."""
    @ReqProcID.setter
    def ReqProcID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Accession(self) -> builtins.str:
        """The accession number of the imaging request, as text."""
    @Accession.setter
    def Accession(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientID(self) -> builtins.str:
        """The patient identifier; the library doesn't compare it with cPatient.PatientID."""
    @PatientID.setter
    def PatientID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientName(self) -> builtins.str:
        """The name of the patient, unchanged as the client sets it."""
    @PatientName.setter
    def PatientName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ReqPhys(self) -> builtins.str:
        """The name of the physician who requested the procedure."""
    @ReqPhys.setter
    def ReqPhys(self, Value: builtins.str) -> None: ...
    def AddRecipient(self, NewRecipient: builtins.str) -> None:
        """Adds a recipient to IntendedRecipients, under the key K and the new number of members.

        Arguments:
            NewRecipient: The recipient, added unchanged.
        """
    def AddOtherPID(self, NewPID: typing.Union[builtins.str, ByRef[builtins.str]]) -> None:
        """Adds an identifier to OtherPatIDs, unless it is blank or the list contains it.

        Arguments:
            NewPID: The identifier; comes back trimmed and in upper case unless the list contains it.
        """
    @builtins.property
    def IntendedRecipients(self) -> classes.IntendedRecipients:
        """The recipients of results as a collection, never null; a put doesn't copy it."""
    @IntendedRecipients.setter
    def IntendedRecipients(self, Value: typing.Optional[classes.IntendedRecipients]) -> None: ...
    @builtins.property
    def OtherPatIDs(self) -> classes.OtherPatIDs:
        """The other patient identifiers as a collection, never null; a put doesn't copy it."""
    @OtherPatIDs.setter
    def OtherPatIDs(self, Value: typing.Optional[classes.OtherPatIDs]) -> None: ...
    @builtins.property
    def AdmissionID(self) -> builtins.str:
        """The identifier of the patient's admission to the hospital or clinic."""
    @AdmissionID.setter
    def AdmissionID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def RefPhysAddress(self) -> builtins.str:
        """The address of the referring physician as one text."""
    @RefPhysAddress.setter
    def RefPhysAddress(self, Value: builtins.str) -> None: ...


class cPatient(Object):
    """A patient. The text PatientID decides which row a save writes."""
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the row that was loaded or saved last; a save sets it and doesn't search by it."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    def LoadOnPatientID(self, PatientID: builtins.str) -> builtins.int:
        """Does nothing and returns 0. LoadOnPatientIDorPDBID loads a patient.

        Arguments:
            PatientID: Ignored.
        """
    def Save(self, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Writes all members to every row with this PatientID, or to a new row. Returns 0.

        Arguments:
            Con: The open connection to the database.
        """
    @builtins.property
    def Sex(self) -> builtins.str:
        """A code that the client chooses; an unpaired single quote makes a save fail."""
    @Sex.setter
    def Sex(self, Value: builtins.str) -> None: ...
    @builtins.property
    def BirthDate(self) -> datetime.datetime:
        """The date of birth; 0 if it isn't known. No time of day is stored."""
    @BirthDate.setter
    def BirthDate(self, Value: datetime.date) -> None: ...
    @builtins.property
    def LastName(self) -> builtins.str:
        """The family name; empty if it isn't known."""
    @LastName.setter
    def LastName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def FirstName(self) -> builtins.str:
        """The given name; empty if it isn't known."""
    @FirstName.setter
    def FirstName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PatientID(self) -> builtins.str:
        """The patient identifier, a text that is stored in upper case."""
    @PatientID.setter
    def PatientID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def OtherIDs(self) -> classes.OtherPatIDs:
        """The other identifiers of the patient; at most 255 characters of them are stored."""
    @OtherIDs.setter
    def OtherIDs(self, Value: typing.Optional[classes.OtherPatIDs]) -> None: ...
    @builtins.property
    def RespDoctor(self) -> builtins.int:
        """The number of the responsible doctor, cDoctor.drID; 0 if there is none."""
    @RespDoctor.setter
    def RespDoctor(self, Value: builtins.int) -> None: ...
    def LoadOnPatientIDorPDBID(self, Con: typing.Optional[classes.Connection], PatientID: builtins.str, PDBID: builtins.int) -> builtins.int:
        """Loads a patient. Returns 1, or 0 if there is none; a failure shows a message and returns 0.

        Arguments:
            Con: The open connection to the database.
            PatientID: The patient identifier; empty to search by PDBID.
            PDBID: The key of the row; ignored unless PatientID is empty.
        """
    @builtins.property
    def IDImg(self) -> builtins.str:
        """The client's name for a portrait of the patient; empty if there is none."""
    @IDImg.setter
    def IDImg(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PrevXrayDate(self) -> datetime.datetime:
        """The date of the previous X-ray image; 0 if it isn't known. No time of day is stored."""
    @PrevXrayDate.setter
    def PrevXrayDate(self, Value: datetime.date) -> None: ...
    @builtins.property
    def Comments(self) -> builtins.str:
        """Free text about the patient."""
    @Comments.setter
    def Comments(self, Value: builtins.str) -> None: ...
    @builtins.property
    def EMail(self) -> builtins.str:
        """The e-mail address; empty if it isn't known."""
    @EMail.setter
    def EMail(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TelMobile(self) -> builtins.str:
        """The mobile telephone number, as text."""
    @TelMobile.setter
    def TelMobile(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TelTwo(self) -> builtins.str:
        """The second telephone number, as text."""
    @TelTwo.setter
    def TelTwo(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TelOne(self) -> builtins.str:
        """The first telephone number, as text."""
    @TelOne.setter
    def TelOne(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Address(self) -> builtins.str:
        """The postal address as one text."""
    @Address.setter
    def Address(self, Value: builtins.str) -> None: ...


class cStringItem(Object):
    """A text with a number: a patient identifier, a recipient or a comment of an image."""
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the image of a comment; otherwise a number that its list or caller assigns."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def str(self) -> builtins.str:
        """The text; of a comment of an image at most 150 characters are stored."""
    @str.setter
    def str(self, Value: builtins.str) -> None: ...
    @builtins.property
    def bSaved(self) -> builtins.bool:
        """True if the comment is stored; cImage doesn't store such a comment again."""
    @bSaved.setter
    def bSaved(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def Signature(self) -> builtins.str:
        """The person who signed the comment; at most 150 characters are stored."""
    @Signature.setter
    def Signature(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DateStamp(self) -> datetime.datetime:
        """The date and time of the comment; 0 for other texts."""
    @DateStamp.setter
    def DateStamp(self, Value: datetime.date) -> None: ...


class cStudy(Object):
    """A DICOM study of a patient."""
    @builtins.property
    def Key(self) -> builtins.str:
        """The key of the study in a collection of the client; not stored."""
    @Key.setter
    def Key(self, Value: builtins.str) -> None: ...
    @builtins.property
    def location(self) -> enumerations.gdcmObjectLocation:
        """Where the images of the study are: local, on a DICOM server, or both; not stored."""
    @location.setter
    def location(self, Value: typing.Union[enumerations.gdcmObjectLocation, builtins.int]) -> None: ...
    def loadStudy(self, Study: builtins.str, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Loads a study. Returns false if there is none and changes nothing then.

        Arguments:
            Study: The study instance UID, or a text without a point: the key in decimal.
            Con: The open connection to the database.
        """
    def savestudy(self, CheckExistOnID: builtins.bool, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Updates the row of the study, or inserts one if none is found. Returns true.

        Arguments:
            CheckExistOnID: True searches the row by ID, false by instanceUID.
            Con: The open connection to the database.
        """
    @builtins.property
    def PatientID(self) -> builtins.int:
        """The key of the patient; a save does not write 0."""
    @PatientID.setter
    def PatientID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def referDrName(self) -> builtins.str:
        """The name of the referring doctor, at most 255 characters."""
    @referDrName.setter
    def referDrName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def PhysOfRecord(self) -> builtins.str:
        """The names of the physicians of record, of which 255 characters are stored."""
    @PhysOfRecord.setter
    def PhysOfRecord(self, Value: builtins.str) -> None: ...
    @builtins.property
    def accessionNumber(self) -> builtins.str:
        """The DICOM accession number, at most 64 characters."""
    @accessionNumber.setter
    def accessionNumber(self, Value: builtins.str) -> None: ...
    @builtins.property
    def instanceUID(self) -> builtins.str:
        """The DICOM study instance UID; an empty one is stored as the text TOM."""
    @instanceUID.setter
    def instanceUID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def description(self) -> builtins.str:
        """The description; 64 characters are stored, a single quote counts as two."""
    @description.setter
    def description(self, Value: builtins.str) -> None: ...
    @builtins.property
    def dateTime(self) -> datetime.datetime:
        """The date and time of the study, in whole seconds."""
    @dateTime.setter
    def dateTime(self, Value: datetime.date) -> None: ...
    @builtins.property
    def studyID(self) -> builtins.str:
        """The DICOM study identifier, not the key; 16 characters are stored, a single quote counts as two."""
    @studyID.setter
    def studyID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the study in the database; 0 if the study is not stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    def Delete(self, Con: typing.Optional[classes.Connection]) -> None:
        """Deletes the row of the study; its series and images stay in the database.

        Arguments:
            Con: The open connection to the database.
        """


class cTeeth(Object):
    """A collection of teeth, counted from 1."""
    def Add(self, Selected: builtins.bool, TNumber: builtins.int, sKey: builtins.str = ...) -> classes.cTooth:
        """Adds a tooth at the end and returns it. Checks neither the number nor the key.

        Arguments:
            Selected: True if the tooth is selected.
            TNumber: The FDI number of the tooth, such as 11.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cTooth:
        """Returns a tooth, or null if the position or key doesn't exist.

        Arguments:
            vntIndexKey: The position from 1, or the key, in the full set Tooth and the number: Tooth11.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of teeth; 52 in the full set."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes a tooth; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """An enumerator over the teeth, for a For Each loop."""
    def __call__(self, vntIndexKey: typing.Any) -> classes.cTooth:
        """Returns a tooth, or null if the position or key doesn't exist.

        Arguments:
            vntIndexKey: The position from 1, or the key, in the full set Tooth and the number: Tooth11.
        """
    def __getitem__(self, key: typing.Any) -> classes.cTooth: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cTooth]: ...


class cTemplate(Object):
    """A template: a named page layout with a canvas and image slots."""
    @builtins.property
    def TemplateAttributes(self) -> classes.Collection:
        """The slots, as a collection of cTemplateAttribute; the key of a loaded slot is K and its ID."""
    @TemplateAttributes.setter
    def TemplateAttributes(self, Value: typing.Optional[Object]) -> None: ...
    @builtins.property
    def TCForcedImageType(self) -> enumerations.xigImageTypes:
        """The image type forced on images that the template places; -1 if none is forced."""
    @TCForcedImageType.setter
    def TCForcedImageType(self, Value: typing.Union[enumerations.xigImageTypes, builtins.int]) -> None: ...
    @builtins.property
    def TCDicomID(self) -> builtins.int:
        """The number by which a series names the template; up to 999 for the standard layouts."""
    @TCDicomID.setter
    def TCDicomID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def TCComments(self) -> builtins.str:
        """Free text."""
    @TCComments.setter
    def TCComments(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TCHeight(self) -> builtins.float:
        """The height of the canvas in pixels."""
    @TCHeight.setter
    def TCHeight(self, Value: builtins.float) -> None: ...
    @builtins.property
    def TCWidth(self) -> builtins.float:
        """The width of the canvas in pixels."""
    @TCWidth.setter
    def TCWidth(self, Value: builtins.float) -> None: ...
    @builtins.property
    def TCDate(self) -> datetime.datetime:
        """The date of the template; a save stores it for new templates only."""
    @TCDate.setter
    def TCDate(self, Value: datetime.date) -> None: ...
    @builtins.property
    def TCName(self) -> builtins.str:
        """The name, at most 255 characters."""
    @TCName.setter
    def TCName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TCID(self) -> builtins.int:
        """The key of the template in the database; 0 or below if the template is not stored."""
    @TCID.setter
    def TCID(self, Value: builtins.int) -> None: ...
    def GetTemplate(self, Con: typing.Optional[classes.Connection], TID: builtins.int = ..., DicomID: builtins.int = ...) -> None:
        """Loads a template and its slots; if there is none, only sets TCID to 0.

        Arguments:
            Con: The open connection to the database.
            TID: The key of the template; ignored if DicomID is not 0.
            DicomID: The TCDicomID of the template; 0 searches by TID instead.
        """
    def LoadTemplateAttributes(self, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Replaces the slots by the stored ones in the order of their numbers; returns how many there are.

        Arguments:
            Con: The open connection to the database.
        """
    @builtins.property
    def TCHidden(self) -> builtins.bool:
        """True if the client hides the template; stored in the column TCMaximized."""
    @TCHidden.setter
    def TCHidden(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def TCChecksum(self) -> builtins.int:
        """A number of the client; the library stores it and neither computes nor compares it."""
    @TCChecksum.setter
    def TCChecksum(self, Value: builtins.int) -> None: ...
    def Save(self, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Stores the template and its slots; a removed slot stays in the database. Returns true.

        Arguments:
            Con: The open connection to the database.
        """


class cTemplateAttribute(Object):
    """An image slot of a template: its position, size, order of filling and anatomic group."""
    @builtins.property
    def TANumberInTemplate(self) -> builtins.int:
        """The number of the slot; it shows the image whose FrameNumber is equal."""
    @TANumberInTemplate.setter
    def TANumberInTemplate(self, Value: builtins.int) -> None: ...
    @builtins.property
    def TAHeight(self) -> builtins.float:
        """The height, as a fraction of the canvas height."""
    @TAHeight.setter
    def TAHeight(self, Value: builtins.float) -> None: ...
    @builtins.property
    def TAWidth(self) -> builtins.float:
        """The width, as a fraction of the canvas width."""
    @TAWidth.setter
    def TAWidth(self, Value: builtins.float) -> None: ...
    @builtins.property
    def TAPosY(self) -> builtins.float:
        """The distance from the top of the canvas, as a fraction of its height."""
    @TAPosY.setter
    def TAPosY(self, Value: builtins.float) -> None: ...
    @builtins.property
    def TAPosX(self) -> builtins.float:
        """The distance from the left of the canvas, as a fraction of its width."""
    @TAPosX.setter
    def TAPosX(self, Value: builtins.float) -> None: ...
    @builtins.property
    def TARotation(self) -> builtins.int:
        """The rotation, as a number that the client defines; 0 for an upright image."""
    @TARotation.setter
    def TARotation(self, Value: builtins.int) -> None: ...
    @builtins.property
    def TASequence(self) -> builtins.int:
        """The order in which the slots are filled, from 1."""
    @TASequence.setter
    def TASequence(self, Value: builtins.int) -> None: ...
    @builtins.property
    def AIID(self) -> builtins.int:
        """The number of the expected anatomic group; an update also searches its row by this number."""
    @AIID.setter
    def AIID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def TCID(self) -> builtins.int:
        """The key of the template."""
    @TCID.setter
    def TCID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the slot in the database; 0 if the slot is not stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    def Save(self, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Inserts the slot if ID is 0; otherwise updates the row whose key is AIID, not ID. Returns true.

        Arguments:
            Con: The open connection to the database.
        """
    @builtins.property
    def TAADName(self) -> builtins.str:
        """The name of the expected anatomic group, at most 255 characters."""
    @TAADName.setter
    def TAADName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TAAnatomicRegion(self) -> builtins.str:
        """A text of the client; neither loaded nor stored."""
    @TAAnatomicRegion.setter
    def TAAnatomicRegion(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TAImagepath(self) -> builtins.str:
        """A path of the client, at most 512 characters; stored, but never loaded."""
    @TAImagepath.setter
    def TAImagepath(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TAComments(self) -> builtins.str:
        """Free text."""
    @TAComments.setter
    def TAComments(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TAProportions(self) -> builtins.float:
        """The height divided by the width; a null or 0 is loaded as 0.7."""
    @TAProportions.setter
    def TAProportions(self, Value: builtins.float) -> None: ...


class cTooth(Object):
    """One tooth, with the mark that it is selected."""
    @builtins.property
    def TNumber(self) -> builtins.int:
        """The FDI number: 11 to 48 for permanent teeth, 51 to 85 for primary teeth."""
    @TNumber.setter
    def TNumber(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Selected(self) -> builtins.bool:
        """True if the tooth is selected; false in a new object."""
    @Selected.setter
    def Selected(self, Value: builtins.bool) -> None: ...


class IntendedRecipients(Object):
    """The intended recipients of results as a collection, counted from 1."""
    def Add(self, str: builtins.str, ID: builtins.int, sKey: builtins.str = ...) -> classes.cStringItem:
        """Adds a recipient at the end and returns it, also if an equal one exists.

        Arguments:
            str: The recipient, stored unchanged in the collection.
            ID: The number that the new member gets as its ID.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cStringItem:
        """Returns a recipient; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of recipients."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes a recipient; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """An enumerator over the recipients, for a For Each loop."""
    def __call__(self, vntIndexKey: typing.Any) -> classes.cStringItem:
        """Returns a recipient; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    def __getitem__(self, key: typing.Any) -> classes.cStringItem: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cStringItem]: ...


class OtherPatIDs(Object):
    """The other identifiers of a patient as a collection, counted from 1."""
    def Add(self, str: typing.Union[builtins.str, ByRef[builtins.str]], ID: builtins.int, sKey: builtins.str = ...) -> classes.cStringItem:
        """Adds and returns an identifier; returns the equal member, or null for a blank text.

        Arguments:
            str: The identifier; comes back trimmed and in upper case unless a member equals it.
            ID: The number that the new member gets as its ID.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cStringItem:
        """Returns an identifier; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of identifiers."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes an identifier; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """An enumerator over the identifiers, for a For Each loop."""
    def GetAllAsString(self) -> builtins.str:
        """Returns all identifiers in one text; correct only if Delimiter is a single character."""
    @builtins.property
    def Delimiter(self) -> builtins.str:
        """The separator between identifiers in one text; a backslash unless it is changed."""
    @Delimiter.setter
    def Delimiter(self, Value: builtins.str) -> None: ...
    @builtins.property
    def TotalLengthWithDelimiter(self) -> builtins.int:
        """The length of GetAllAsString in characters, with a delimiter of one character."""
    def FillFromString(self, sDelimitedString: builtins.str) -> None:
        """Replaces all members by the parts of a text; ignores blank parts.

        Arguments:
            sDelimitedString: The identifiers, separated by Delimiter; the empty text empties the collection.
        """
    def __call__(self, vntIndexKey: typing.Any) -> classes.cStringItem:
        """Returns an identifier; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    def __getitem__(self, key: typing.Any) -> classes.cStringItem: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cStringItem]: ...


class cAnatomicDescription(Object):
    """The anatomy that an image or a template slot shows: side, region, structure, teeth."""
    def InitCollection(self) -> None:
        """Replaces cTeeth by the full set of 52 teeth, none of them selected."""
    def LoadSGN(self, Con: typing.Optional[classes.Connection], lADId: builtins.int) -> None:
        """Loads the first row of a group. Changes nothing and raises nothing if there is none.

        Arguments:
            Con: The open connection to the database.
            lADId: The number of the group, see ADId.
        """
    def SaveSGN(self, Con: typing.Optional[classes.Connection]) -> typing.Any:
        """Writes the row. Returns false after a failure, which can leave a transaction open.

        Arguments:
            Con: The open connection to the database.
        """
    @builtins.property
    def ADName(self) -> builtins.str:
        """The name of the group; a load sets it only if it is empty."""
    @ADName.setter
    def ADName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ADLaterality(self) -> builtins.str:
        """The side: R right, L left, B both, or empty."""
    @ADLaterality.setter
    def ADLaterality(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ADAnaRegion(self) -> builtins.str:
        """The code of the anatomic region, such as T-11170; a load changes T-D1217 to T-D1213."""
    @ADAnaRegion.setter
    def ADAnaRegion(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ADAnaRegionMod(self) -> builtins.str:
        """The code of the region modifier, such as T-5100B; empty if there is none."""
    @ADAnaRegionMod.setter
    def ADAnaRegionMod(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ADPriStructure(self) -> builtins.str:
        """The primary structure; in an intra-oral row the selected teeth, which a save writes here."""
    @ADPriStructure.setter
    def ADPriStructure(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ADType(self) -> enumerations.AnaDescType:
        """The kind: 0 intra-oral, 1 any other X-ray image, 999 all."""
    @ADType.setter
    def ADType(self, Value: typing.Union[enumerations.AnaDescType, builtins.int]) -> None: ...
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the row, which the database assigns; 0 or below if it isn't stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ADOrderNo(self) -> builtins.int:
        """The position of the group in lists."""
    @ADOrderNo.setter
    def ADOrderNo(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ADComments(self) -> builtins.str:
        """Free text about the group."""
    @ADComments.setter
    def ADComments(self, Value: builtins.str) -> None: ...
    @builtins.property
    def cTeeth(self) -> classes.cTeeth:
        """The teeth, never null; a put replaces the collection without copying it."""
    @cTeeth.setter
    def cTeeth(self, Value: typing.Optional[classes.cTeeth]) -> None: ...
    @builtins.property
    def ADId(self) -> builtins.int:
        """The number of the group; the save of a new row replaces 0 or less by its key + 1000."""
    @ADId.setter
    def ADId(self, Value: builtins.int) -> None: ...
    def DeleteSGN(self, Con: typing.Optional[classes.Connection]) -> None:
        """Deletes the row of ID; templates that name its group stay unchanged.

        Arguments:
            Con: The open connection to the database.
        """
    def DeleteSGNOnTGId(self, Con: typing.Optional[classes.Connection]) -> None:
        """Deletes all rows of the group ADId; templates that name it stay unchanged.

        Arguments:
            Con: The open connection to the database.
        """
    def GetAsString(self, bComm: builtins.bool = ...) -> builtins.str:
        """Returns the selected teeth in order: for each tooth its two digits and a comma.

        Arguments:
            bComm: False omits the commas; SetTeethFromString can't read such a text.
        """
    def SetTeethFromString(self, sIOstring: builtins.str, oTeeth: typing.Optional[classes.cTeeth]) -> None:
        """Replaces cTeeth by the full set and selects the teeth that a text names.

        Arguments:
            sIOstring: For each tooth its two digits and a comma; an empty text selects none.
            oTeeth: Ignored; the teeth are selected in this object's own new collection.
        """


class cImageManipulation(Object):
    """A recorded manipulation of a placed image, such as a rotation or a crop."""
    @builtins.property
    def ManipulationType(self) -> enumerations.ManipulationType:
        """The kind of the manipulation; 0 in a new object. The kind UndoStop is never stored."""
    @ManipulationType.setter
    def ManipulationType(self, Value: typing.Union[enumerations.ManipulationType, builtins.int]) -> None: ...
    @builtins.property
    def LongParameter(self) -> builtins.int:
        """A number whose meaning the client defines for each kind, such as an angle."""
    @LongParameter.setter
    def LongParameter(self, Value: builtins.int) -> None: ...
    @builtins.property
    def StringParameter(self) -> builtins.str:
        """A text of the client; for ManCosmetic three digits of the storage root and the path of a file."""
    @StringParameter.setter
    def StringParameter(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ImageManipulationID(self) -> builtins.int:
        """The key of the row that was loaded; a save ignores it and always writes new rows."""
    @ImageManipulationID.setter
    def ImageManipulationID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def UndoImageHandle(self) -> builtins.int:
        """A number for the client's undo; not stored, and the library never sets it."""
    @UndoImageHandle.setter
    def UndoImageHandle(self, Value: builtins.int) -> None: ...
    @builtins.property
    def IAID(self) -> builtins.int:
        """The key of the placed image, if the client sets it; neither loaded nor stored."""
    @IAID.setter
    def IAID(self, Value: builtins.int) -> None: ...


class cUniCard(Object):
    """An entry of a patient's card list: an image card, or a series with its study."""
    @builtins.property
    def mvarImgLead(self) -> typing.Any:
        """An object of the client; the library never uses it."""
    @mvarImgLead.setter
    def mvarImgLead(self, Value: typing.Any) -> None: ...
    @builtins.property
    def SortDate(self) -> datetime.datetime:
        """The date that sorts the list: that of the image card or the series; 0 for an empty entry."""
    @builtins.property
    def Key(self) -> builtins.str:
        """The key in the card list: IC and the key of the image card, or SE and the key of the series."""
    @Key.setter
    def Key(self, Value: builtins.str) -> None: ...
    @builtins.property
    def CardType(self) -> enumerations.CardTypes:
        """The kind: ctseries if Series is set, else ctImagecard if Imagecard is set, else ctUnknown."""
    def LoadCardFull(self, conn: typing.Optional[classes.Connection], UID: builtins.str, ID: typing.Union[builtins.int, ByRef[builtins.int]], CardType: typing.Union[enumerations.CardTypes, builtins.int]) -> builtins.int:
        """Loads the images of the entry and their positions on the image card. Always returns 0.

        Arguments:
            conn: The open connection to the database.
            UID: Ignored.
            ID: The key of the series; 0 for that of Series, which it then becomes. Ignored for image cards.
            CardType: The kind of the entry, 1 for an image card or 2 for a series; any other kind loads nothing.
        """
    @builtins.property
    def Template(self) -> classes.cTemplate:
        """The template of the series; null before LoadCardFull and for an image card."""
    @Template.setter
    def Template(self, Value: typing.Optional[classes.cTemplate]) -> None: ...
    @builtins.property
    def Fullyloaded(self) -> builtins.bool:
        """True if the client has loaded the entry; the library never sets it to true."""
    @Fullyloaded.setter
    def Fullyloaded(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def Study(self) -> classes.cStudy:
        """The study of the series; entries of one study share the object. Null for an image card."""
    @Study.setter
    def Study(self, Value: typing.Optional[classes.cStudy]) -> None: ...
    @builtins.property
    def Series(self) -> classes.cSerie:
        """The series; null for an image card."""
    @Series.setter
    def Series(self, Value: typing.Optional[classes.cSerie]) -> None: ...
    @builtins.property
    def Imagecard(self) -> classes.cImagecard:
        """The image card; for a series, LoadCardFull creates one that is not stored."""
    @Imagecard.setter
    def Imagecard(self, Value: typing.Optional[classes.cImagecard]) -> None: ...
    @builtins.property
    def colImages(self) -> classes.cImages:
        """The images; null before LoadCardFull."""
    @colImages.setter
    def colImages(self, Value: typing.Optional[classes.cImages]) -> None: ...


class cImages(Object):
    """The images of a patient or a series, or of a condition in SQL."""
    def LoadAll4Object(self, conn: typing.Optional[classes.Connection], ObjectType: typing.Union[enumerations.ImageOwnerOjectTypes, builtins.int], ID: builtins.int, SQLWhereClause: builtins.str = ...) -> builtins.int:
        """Replaces the members by the images of an owner, oldest first, and returns their number.

        Arguments:
            conn: The open connection to the database.
            ObjectType: Which owner: iootPatient or iootSeries. Other values need SQLWhereClause.
            ID: The key of the patient or the series; ignored if SQLWhereClause is not empty.
            SQLWhereClause: A condition in SQL that begins with WHERE and selects the images instead of the owner.
        """
    def Add(self, URL: builtins.str, ID: builtins.int, ImageType: typing.Union[enumerations.xigImageTypes, builtins.int], sTeeth: builtins.str, Approved: builtins.bool, PatID: builtins.int, dateTime: datetime.date, MirrRotStatus: builtins.int, DPIY: builtins.int, DPIX: builtins.int, RootId: builtins.int, Pregnant: builtins.int, ImageNumberInSeries: builtins.int, DicomStatus: builtins.int, studyID: builtins.int, FrameNumber: builtins.int, seriesID: builtins.int, instanceUID: builtins.str, Laterality: builtins.str, AnaRegion: builtins.str, AnaRegionMod: builtins.str, Comments: typing.Optional[classes.cComments], Root_RootDirectory: builtins.str, HWSourceTxt: builtins.str, ApprGamma: builtins.int, ApprBrightness: builtins.int, ApprContrast: builtins.int, ApprInvert: builtins.bool, CapturePerson: builtins.str, RespPerson: builtins.str, sKey: builtins.str = ...) -> classes.cImage:
        """Creates an image with these values, adds it at the end and returns it; stores nothing.

        Arguments:
            URL: The path of the image file below the storage root; empty if there is no file.
            ID: The key of the image in the database; 0 if the image is not stored.
            ImageType: The kind of the image.
            sTeeth: The teeth in the image, as two-digit numbers, each followed by a comma.
            Approved: True if the image is approved.
            PatID: The key of the patient.
            dateTime: The date and time of capture.
            MirrRotStatus: Mirroring and rotation, as a number that the client defines.
            DPIY: The vertical resolution in dots per inch; 0 if it is not known.
            DPIX: The horizontal resolution in dots per inch; 0 if it is not known.
            RootId: The number of the storage root that contains the file.
            Pregnant: The answer about pregnancy as a 16-bit number, 10 for not asked.
            ImageNumberInSeries: The number of the image in its series.
            DicomStatus: The DICOM state of the image; 2 means that it is on a DICOM server too.
            studyID: The key of the study; 0 if the image belongs to none.
            FrameNumber: The frame of the layout that shows the image; 0 if none does.
            seriesID: The key of the series; 0 if the image belongs to none.
            instanceUID: The DICOM SOP instance UID, at most 64 characters.
            Laterality: The side: L for left, R for right, B for both; empty if it is not known.
            AnaRegion: The code of the anatomic region; empty if it is not known.
            AnaRegionMod: The code of the anatomic region's modifier; empty if it is not known.
            Comments: The comments, to which the image refers without a copy; null for an empty list.
            Root_RootDirectory: The directory of the storage root.
            HWSourceTxt: The name of the capture hardware, at most 255 characters.
            ApprGamma: The gamma value of the display.
            ApprBrightness: The brightness of the display.
            ApprContrast: The contrast of the display.
            ApprInvert: True if the image is displayed with inverted grey values.
            CapturePerson: The person who captured the image, at most 255 characters.
            RespPerson: The person who is responsible for the image, at most 255 characters.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cImage:
        """Returns an image of the collection, or null if there is none.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of images in the collection."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes an image from the collection; a stored image stays in the database.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """Returns an enumerator of the members, in their order."""
    def AddObject(self, oImage: typing.Union[typing.Optional[classes.cImage], ByRef[classes.cImage]], sKey: builtins.str = ...) -> classes.cImage:
        """Adds an existing image at the end and returns it.

        Arguments:
            oImage: The image; the variable of the caller is null afterwards.
            sKey: The key of the new member, which the Key of the image is set to; empty for none.
        """
    def __call__(self, vntIndexKey: typing.Any) -> classes.cImage:
        """Returns an image of the collection, or null if there is none.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    def __getitem__(self, key: typing.Any) -> classes.cImage: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cImage]: ...


class cUniCards(Object):
    """A patient's card list: the image cards and series, newest first."""
    def GetICAndSEList4Patient(self, conn: typing.Optional[classes.Connection], sPID: builtins.str, lPID: builtins.int, FromDate: datetime.date = ..., ToDate: datetime.date = ...) -> builtins.int:
        """Adds a patient's image cards and series, returns the patient's key; deletes old empty series.

        Arguments:
            conn: The open connection to the database.
            sPID: The patient identifier (column PersonNr_CH), not the key of the patient.
            lPID: Ignored.
            FromDate: Ignored.
            ToDate: Ignored.
        """
    def AddObj(self, oUC: typing.Optional[classes.cUniCard], sKey: builtins.str = ..., sBefore: builtins.str = ...) -> builtins.bool:
        """Inserts an entry before another one. Returns true.

        Arguments:
            oUC: The entry; the collection refers to it and makes no copy.
            sKey: The key of the new member, which no other member may have; empty for no key.
            sBefore: The key of the member behind the new one; without it the operation fails.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cUniCard:
        """Returns an entry of the card list.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of entries in the card list."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes an entry from the card list; the database stays unchanged.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """Returns an enumerator of the members, in their order."""
    def __call__(self, vntIndexKey: typing.Any) -> classes.cUniCard:
        """Returns an entry of the card list.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    def __getitem__(self, key: typing.Any) -> classes.cUniCard: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cUniCard]: ...


class cImage(Object):
    """A stored image of a patient: its file, capture data, anatomy and display settings."""
    @builtins.property
    def AnaRegionMod(self) -> builtins.str:
        """The code of the anatomic region's modifier, such as T-5100B; empty if it is not known."""
    @AnaRegionMod.setter
    def AnaRegionMod(self, Value: builtins.str) -> None: ...
    @builtins.property
    def AnaRegion(self) -> builtins.str:
        """The code of the anatomic region, such as T-11170 for the upper jaw; empty if it is not known."""
    @AnaRegion.setter
    def AnaRegion(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Laterality(self) -> builtins.str:
        """The side: L for left, R for right, B for both; empty if it is not known."""
    @Laterality.setter
    def Laterality(self, Value: builtins.str) -> None: ...
    @builtins.property
    def instanceUID(self) -> builtins.str:
        """The DICOM SOP instance UID, at most 64 characters."""
    @instanceUID.setter
    def instanceUID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def seriesID(self) -> builtins.int:
        """The key of the series; 0 if the image belongs to none."""
    @seriesID.setter
    def seriesID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def studyID(self) -> builtins.int:
        """The key of the study; 0 if the image belongs to none."""
    @studyID.setter
    def studyID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ImageNumberInSeries(self) -> builtins.int:
        """The number of the image in its series."""
    @ImageNumberInSeries.setter
    def ImageNumberInSeries(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Pregnant(self) -> builtins.int:
        """The answer about pregnancy, 16 bits, 10 for not asked; stored for new images only, never loaded."""
    @Pregnant.setter
    def Pregnant(self, Value: builtins.int) -> None: ...
    @builtins.property
    def RootId(self) -> builtins.int:
        """The number of the storage root that contains the file; a save stores it for new images only."""
    @RootId.setter
    def RootId(self, Value: builtins.int) -> None: ...
    @builtins.property
    def DPIX(self) -> builtins.int:
        """The horizontal resolution in dots per inch; 0 if it is not known."""
    @DPIX.setter
    def DPIX(self, Value: builtins.int) -> None: ...
    @builtins.property
    def DPIY(self) -> builtins.int:
        """The vertical resolution in dots per inch; 0 if it is not known."""
    @DPIY.setter
    def DPIY(self, Value: builtins.int) -> None: ...
    @builtins.property
    def MirrRotStatus(self) -> builtins.int:
        """Mirroring and rotation, as a number that the client defines; a null is loaded as 1."""
    @MirrRotStatus.setter
    def MirrRotStatus(self, Value: builtins.int) -> None: ...
    @builtins.property
    def dateTime(self) -> datetime.datetime:
        """The date and time of capture; a save stores it for new images only."""
    @dateTime.setter
    def dateTime(self, Value: datetime.date) -> None: ...
    @builtins.property
    def PatID(self) -> builtins.int:
        """The key of the patient."""
    @PatID.setter
    def PatID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Approved(self) -> builtins.bool:
        """True if the image is approved."""
    @Approved.setter
    def Approved(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def sTeeth(self) -> builtins.str:
        """The teeth as two-digit numbers, each followed by a comma; SaveEx stores 180 characters."""
    @sTeeth.setter
    def sTeeth(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ImageType(self) -> enumerations.xigImageTypes:
        """The kind of the image, such as panoramic radiograph or photograph."""
    @ImageType.setter
    def ImageType(self, Value: typing.Union[enumerations.xigImageTypes, builtins.int]) -> None: ...
    def Save(self, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Stores the image and its new comments; inserts a row if ID is 0, else updates it. Returns 0.

        Arguments:
            Con: The open connection to the database.
        """
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the image in the database; 0 if the image is not stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def URL(self) -> builtins.str:
        """The path of the image file below the storage root; empty if there is no file."""
    @URL.setter
    def URL(self, Value: builtins.str) -> None: ...
    @builtins.property
    def HWSourceTxt(self) -> builtins.str:
        """The name of the capture hardware, at most 255 characters."""
    @HWSourceTxt.setter
    def HWSourceTxt(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Comments(self) -> classes.cComments:
        """The comments, newest first; never null when read. GetComments loads the stored ones."""
    @Comments.setter
    def Comments(self, Value: typing.Optional[classes.cComments]) -> None: ...
    @builtins.property
    def FrameNumber(self) -> builtins.int:
        """The frame of the layout that shows the image; 0 if none does."""
    @FrameNumber.setter
    def FrameNumber(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Root_RootDirectory(self) -> builtins.str:
        """The directory of the storage root, loaded with the image, never written to the database."""
    @Root_RootDirectory.setter
    def Root_RootDirectory(self, Value: builtins.str) -> None: ...
    @builtins.property
    def DicomStatus(self) -> builtins.int:
        """The DICOM state of the image; 2 means that it is on a DICOM server too."""
    @DicomStatus.setter
    def DicomStatus(self, Value: builtins.int) -> None: ...
    def GetImage(self, Con: typing.Optional[classes.Connection], ImageBildID: builtins.int) -> builtins.bool:
        """Loads an image without its comments. Returns false if there is none and changes nothing then.

        Arguments:
            Con: The open connection to the database.
            ImageBildID: The key of the image.
        """
    def addComment(self, sComment: builtins.str, sSignature: builtins.str, commentDate: datetime.date, saved: builtins.bool, Action: builtins.str = ..., objpointer: builtins.int = ...) -> None:
        """Adds a comment in front of the others; the next save stores it unless saved is true.

        Arguments:
            sComment: The text, of which 150 characters are stored.
            sSignature: The name of the author, of which 150 characters are stored.
            commentDate: The date and time of the comment.
            saved: True if the database has the comment already, so that no save stores it.
            Action: Ignored.
            objpointer: Ignored.
        """
    def GetComments(self, Con: typing.Optional[classes.Connection]) -> None:
        """Loads the comments, newest first; does nothing if Comments is not empty.

        Arguments:
            Con: The open connection to the database.
        """
    @builtins.property
    def ApprInvert(self) -> builtins.bool:
        """True if the image is displayed with inverted grey values."""
    @ApprInvert.setter
    def ApprInvert(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def ApprContrast(self) -> builtins.int:
        """The contrast of the display, on a scale that the client defines."""
    @ApprContrast.setter
    def ApprContrast(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ApprBrightness(self) -> builtins.int:
        """The brightness of the display, on a scale that the client defines."""
    @ApprBrightness.setter
    def ApprBrightness(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ApprGamma(self) -> builtins.int:
        """The gamma value of the display, on a scale that the client defines."""
    @ApprGamma.setter
    def ApprGamma(self, Value: builtins.int) -> None: ...
    @builtins.property
    def RespPerson(self) -> builtins.str:
        """The person who is responsible for the image, at most 255 characters."""
    @RespPerson.setter
    def RespPerson(self, Value: builtins.str) -> None: ...
    @builtins.property
    def CapturePerson(self) -> builtins.str:
        """The person who captured the image; a save stores it for images that have a key only."""
    @CapturePerson.setter
    def CapturePerson(self, Value: builtins.str) -> None: ...
    def GetFromRecord(self, rs: typing.Optional[classes.Recordset]) -> None:
        """Fills the image from the current row, up to the first column that cannot be read.

        Arguments:
            rs: An open recordset with the columns of an image; it is not moved.
        """
    @builtins.property
    def CRC(self) -> builtins.str:
        """A check value of the file that the client computes and compares; the library only stores it."""
    @CRC.setter
    def CRC(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Key(self) -> builtins.str:
        """The key under which AddObject added the image to a collection; not stored."""
    @Key.setter
    def Key(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ExposureTime_ms(self) -> builtins.int:
        """The exposure time in milliseconds; 0 if it is not known."""
    @ExposureTime_ms.setter
    def ExposureTime_ms(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Current_mA(self) -> builtins.int:
        """The tube current in milliampere; 0 if it is not known."""
    @Current_mA.setter
    def Current_mA(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Voltage_kV(self) -> builtins.int:
        """The tube voltage in kilovolt; 0 if it is not known."""
    @Voltage_kV.setter
    def Voltage_kV(self, Value: builtins.int) -> None: ...
    @builtins.property
    def FailedToLoadImage(self) -> builtins.bool:
        """True if the client could not load the file; not stored, and the library never sets it."""
    @FailedToLoadImage.setter
    def FailedToLoadImage(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def ThumbnailOnly(self) -> builtins.bool:
        """True if the client loaded a thumbnail only; not stored, and the library never sets it."""
    @ThumbnailOnly.setter
    def ThumbnailOnly(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def OrgHeight(self) -> builtins.int:
        """The original height of the picture; not stored, and the library never sets it."""
    @OrgHeight.setter
    def OrgHeight(self, Value: builtins.int) -> None: ...
    @builtins.property
    def OrgWidth(self) -> builtins.int:
        """The original width of the picture; not stored, and the library never sets it."""
    @OrgWidth.setter
    def OrgWidth(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ApprCrop(self) -> builtins.str:
        """The crop of the display, as a text that the client defines, at most 255 characters."""
    @ApprCrop.setter
    def ApprCrop(self, Value: builtins.str) -> None: ...
    @builtins.property
    def SubType(self) -> builtins.int:
        """A number that the client defines and that refines ImageType."""
    @SubType.setter
    def SubType(self, Value: builtins.int) -> None: ...
    @builtins.property
    def DCMDerived(self) -> builtins.int:
        """0 for an original image, any other number for one that is derived from another image."""
    @DCMDerived.setter
    def DCMDerived(self, Value: builtins.int) -> None: ...
    def SaveEx(self, CheckExistOnID: builtins.bool, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Searches the row of the image and saves it as Save does, so that none is stored twice. Returns 0.

        Arguments:
            CheckExistOnID: True searches by ID; false, or an ID of 0, searches by instanceUID unless that is empty.
            Con: The open connection to the database.
        """


class cSerie(Object):
    """A DICOM series of images of a study."""
    @builtins.property
    def SeriesDateTime(self) -> datetime.datetime:
        """The date and time of the series, in whole seconds."""
    @SeriesDateTime.setter
    def SeriesDateTime(self, Value: datetime.date) -> None: ...
    @builtins.property
    def SeriesDerived(self) -> builtins.bool:
        """True if the images are derived from others."""
    @SeriesDerived.setter
    def SeriesDerived(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def SeriesDescription(self) -> builtins.str:
        """The description; 64 characters are stored, a single quote counts as two."""
    @SeriesDescription.setter
    def SeriesDescription(self, Value: builtins.str) -> None: ...
    @builtins.property
    def InstanceAv(self) -> builtins.str:
        """The availability on the server, ONLINE, NEARLINE or another text; not stored."""
    @InstanceAv.setter
    def InstanceAv(self, Value: builtins.str) -> None: ...
    @builtins.property
    def OrgServer(self) -> builtins.int:
        """The number of the DICOM server that the series comes from; 0 if it was captured here."""
    @OrgServer.setter
    def OrgServer(self, Value: builtins.int) -> None: ...
    @builtins.property
    def Key(self) -> builtins.str:
        """The key of the series in a collection of the client; not stored."""
    @Key.setter
    def Key(self, Value: builtins.str) -> None: ...
    @builtins.property
    def location(self) -> enumerations.gdcmObjectLocation:
        """Where the images of the series are: unknown, local, on a DICOM server, or both."""
    @location.setter
    def location(self, Value: typing.Union[enumerations.gdcmObjectLocation, builtins.int]) -> None: ...
    @builtins.property
    def SeriesName(self) -> builtins.str:
        """The name for the image card that SaveAsIC stores; not stored with the series."""
    @SeriesName.setter
    def SeriesName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ImgCount(self) -> builtins.int:
        """The number of images; HangSeries selects the layout by it. A load changes it only if it is 0."""
    @ImgCount.setter
    def ImgCount(self, Value: builtins.int) -> None: ...
    def adjustLocationStatus(self) -> None:
        """Adds the server to location if InstanceAv is ONLINE or NEARLINE, removes it for any other text."""
    def loadSeries(self, Series: builtins.str, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Loads a series. Returns false if there is none and changes nothing then.

        Arguments:
            Series: The series instance UID, or a text without a point: the key in decimal.
            Con: The open connection to the database.
        """
    def SaveSeries(self, CheckExistOnID: builtins.bool, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Stores the series. Returns false and does nothing if instanceUID is empty or studyID is 0.

        Arguments:
            CheckExistOnID: True searches the row by ID, false by instanceUID; without a row, one is inserted.
            Con: The open connection to the database.
        """
    @builtins.property
    def studyID(self) -> builtins.int:
        """The key of the study; a series with 0 is not saved."""
    @studyID.setter
    def studyID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def TemplateID(self) -> builtins.int:
        """The layout, as the TCDicomID of a template, not its key; 0 if there is none."""
    @TemplateID.setter
    def TemplateID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the series in the database; 0 if the series is not stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...
    @builtins.property
    def seriesNumber(self) -> builtins.str:
        """The DICOM series number, at most 16 characters; a save does not write an empty one."""
    @seriesNumber.setter
    def seriesNumber(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Modality(self) -> builtins.str:
        """The DICOM modality, such as PX or DX, at most 16 characters."""
    @Modality.setter
    def Modality(self, Value: builtins.str) -> None: ...
    @builtins.property
    def instanceUID(self) -> builtins.str:
        """The DICOM series instance UID, at most 64 characters; a series without one is not saved."""
    @instanceUID.setter
    def instanceUID(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Approved(self) -> builtins.bool:
        """True if the card list found all images approved or none captured yet; not stored."""
    @Approved.setter
    def Approved(self, Value: builtins.bool) -> None: ...
    @builtins.property
    def Changed(self) -> builtins.bool:
        """True if the client marks the series as changed; not stored, and the library never uses it."""
    @Changed.setter
    def Changed(self, Value: builtins.bool) -> None: ...
    def Delete(self, Con: typing.Optional[classes.Connection]) -> None:
        """Deletes the row of the series; its images stay in the database.

        Arguments:
            Con: The open connection to the database.
        """
    def SaveAsIC(self, Con: typing.Optional[classes.Connection], colImages: typing.Optional[Object]) -> None:
        """Stores the series as a new image card; does nothing if there are no images.

        Arguments:
            Con: The open connection to the database.
            colImages: The images of the series; the first one names the patient.
        """
    def HangSeries(self, colImgs: typing.Optional[Object], conn: typing.Optional[classes.Connection]) -> builtins.int:
        """Sets TemplateID and the FrameNumber of each image, and returns TemplateID; stores nothing.

        Arguments:
            colImgs: The images of the series.
            conn: The open connection to the database.
        """


class cClinic(Object):
    """A clinic of the organisation, or its head office."""
    def DeleteClinic(self, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Deletes the row of ID; returns true even if there is none.

        Arguments:
            Con: The open connection to the database.
        """
    def SaveClinic(self, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Writes the row of ID, or a new row if there is none. Sets ID and returns true.

        Arguments:
            Con: The open connection to the database.
        """
    def LoadClinic(self, ClinicID: builtins.int, Con: typing.Optional[classes.Connection]) -> builtins.bool:
        """Loads a clinic by its key and returns true; returns false if there is none.

        Arguments:
            ClinicID: The key of the clinic.
            Con: The open connection to the database.
        """
    @builtins.property
    def Remarks16(self) -> builtins.str:
        """Free text; at most 50 characters are stored, in spite of the 16 in the name."""
    @Remarks16.setter
    def Remarks16(self, Value: builtins.str) -> None: ...
    @builtins.property
    def Telephone(self) -> builtins.str:
        """The telephone number; at most 50 characters are stored."""
    @Telephone.setter
    def Telephone(self, Value: builtins.str) -> None: ...
    @builtins.property
    def City(self) -> builtins.str:
        """The city of the address; at most 50 characters are stored."""
    @City.setter
    def City(self, Value: builtins.str) -> None: ...
    @builtins.property
    def StreetAddress(self) -> builtins.str:
        """The street and house number; at most 50 characters are stored."""
    @StreetAddress.setter
    def StreetAddress(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ZipCode(self) -> builtins.str:
        """The postal code; at most 50 characters are stored."""
    @ZipCode.setter
    def ZipCode(self, Value: builtins.str) -> None: ...
    @builtins.property
    def OrgNumber(self) -> builtins.str:
        """The number of the organisation, as text; at most 50 characters are stored."""
    @OrgNumber.setter
    def OrgNumber(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ClinicName(self) -> builtins.str:
        """The name, stored up to 50 characters; __HQ in any case denotes the head office."""
    @ClinicName.setter
    def ClinicName(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ID(self) -> builtins.int:
        """The key of the row, which the database assigns; 0 if the clinic isn't stored."""
    @ID.setter
    def ID(self, Value: builtins.int) -> None: ...


class cClinics(Object):
    """The clinics of an organisation as a collection, counted from 1."""
    def GetHQClinic(self, Con: typing.Optional[classes.Connection]) -> classes.cClinic:
        """Returns the head office, or null if there is none. Loads an empty collection first.

        Arguments:
            Con: The open connection to the database; used only if the collection is empty.
        """
    def GetAllClinics(self, Con: typing.Optional[classes.Connection]) -> builtins.int:
        """Loads all clinics, sorted by name. Returns their number. Stores __HQ in an empty table.

        Arguments:
            Con: The open connection to the database.
        """
    def Add(self, ID: builtins.int, ClinicName: builtins.str, OrgNumber: builtins.str, ZipCode: builtins.str, StreetAddress: builtins.str, City: builtins.str, Telephone: builtins.str, Remarks16: builtins.str, sKey: builtins.str = ...) -> classes.cClinic:
        """Creates a clinic with these values, adds it at the end and returns it; stores nothing.

        Arguments:
            ID: The key of the clinic; 0 if it isn't stored.
            ClinicName: The name; __HQ in any case denotes the head office.
            OrgNumber: The number of the organisation, as text.
            ZipCode: The postal code.
            StreetAddress: The street and house number.
            City: The city of the address.
            Telephone: The telephone number.
            Remarks16: Free text.
            sKey: The key of the new member, which no other member may have; empty for no key.
        """
    def Item(self, vntIndexKey: typing.Any) -> classes.cClinic:
        """Returns a clinic, or null if the position or key doesn't exist.

        Arguments:
            vntIndexKey: The position from 1, or the key; after GetAllClinics the key is K and the ID.
        """
    def ItemOnClinicName(self, sName: builtins.str, Con: typing.Optional[classes.Connection]) -> classes.cClinic:
        """Returns the first clinic of a name, or null. Loads an empty collection first.

        Arguments:
            sName: The name, compared without regard to case.
            Con: The open connection to the database; used only if the collection is empty.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of clinics in the collection, the head office included."""
    def Remove(self, vntIndexKey: typing.Any) -> None:
        """Removes a clinic from this collection; the row stays in the database.

        Arguments:
            vntIndexKey: The position in the collection, from 1, or the key of the member.
        """
    @builtins.property
    def NewEnum(self) -> typing.Iterator[typing.Any]:
        """An enumerator over the clinics, for a For Each loop."""
    def __call__(self, vntIndexKey: typing.Any) -> classes.cClinic:
        """Returns a clinic, or null if the position or key doesn't exist.

        Arguments:
            vntIndexKey: The position from 1, or the key; after GetAllClinics the key is K and the ID.
        """
    def __getitem__(self, key: typing.Any) -> classes.cClinic: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.cClinic]: ...


class Collection(Object):
    """A list of values with optional keys, counted from 1."""
    def Item(self, Index: typing.Any) -> typing.Any:
        """Returns a member; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            Index: The position in the collection, from 1, or the key, in any case.
        """
    def Add(self, Item: typing.Any, Key: typing.Any = ..., Before: typing.Any = ..., After: typing.Any = ...) -> None:
        """Adds a member at the end, or before or after another one; raises 457 if the key exists.

        Arguments:
            Item: The new member, a value or an object.
            Key: The key of the new member, a text; left out for none.
            Before: The position or key of the member before which to insert.
            After: The position or key of the member after which to insert.
        """
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of members."""
    def Remove(self, Index: typing.Any) -> None:
        """Removes a member; the positions of those after it decrease by one.

        Arguments:
            Index: The position in the collection, from 1, or the key, in any case.
        """
    def _NewEnum(self) -> typing.Iterator[typing.Any]:
        """Returns an enumerator over the members, for a For Each loop."""
    def __call__(self, Index: typing.Any) -> typing.Any:
        """Returns a member; raises 9 for a position and 5 for a key that doesn't exist.

        Arguments:
            Index: The position in the collection, from 1, or the key, in any case.
        """
    def __getitem__(self, key: typing.Any) -> typing.Any: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[typing.Any]: ...


class Connection(Object):
    """A connection to a database."""
    @builtins.property
    def ConnectionString(self) -> builtins.str:
        """The provider and its settings, such as Provider=SQLite;Data Source=clinic.db."""
    @ConnectionString.setter
    def ConnectionString(self, Value: builtins.str) -> None: ...
    @builtins.property
    def CursorLocation(self) -> enumerations.CursorLocationEnum:
        """Where recordsets that are opened from now on keep their rows: 2 server, 3 client."""
    @CursorLocation.setter
    def CursorLocation(self, Value: typing.Union[enumerations.CursorLocationEnum, builtins.int]) -> None: ...
    @builtins.property
    def ConnectionTimeout(self) -> builtins.int:
        """After how many seconds a server that does not answer is given up when the connection is opened."""
    @ConnectionTimeout.setter
    def ConnectionTimeout(self, Value: builtins.int) -> None: ...
    @builtins.property
    def CommandTimeout(self) -> builtins.int:
        """After how many seconds a statement of a server is cancelled; 0: never."""
    @CommandTimeout.setter
    def CommandTimeout(self, Value: builtins.int) -> None: ...
    @builtins.property
    def State(self) -> enumerations.ObjectStateEnum:
        """The state: 0 closed, 1 open."""
    def Open(self, ConnectionString: builtins.str = ..., UserID: builtins.str = ..., Password: builtins.str = ..., Options: builtins.int = ...) -> None:
        """Opens the connection; raises 3705 if it is open.

        Arguments:
            ConnectionString: The connection string; if empty, the property ConnectionString is used.
            UserID: The user; overrides the user in the connection string unless it is empty.
            Password: The password; overrides the one in the connection string unless it is empty.
            Options: Ignored; the connection is always opened synchronously.
        """
    def Close(self) -> None:
        """Closes the connection and its recordsets; raises 3246 while a transaction is open."""
    def Execute(self, CommandText: builtins.str, RecordsAffected: typing.Union[typing.Any, ByRef[typing.Any]] = ..., Options: builtins.int = ...) -> classes.Recordset:
        """Runs a statement and returns its rows; a closed recordset if it isn't a query.

        Arguments:
            CommandText: The SQL statement, or the name of a table with the option adCmdTable.
            RecordsAffected: Receives the number of rows that the statement changed; -1 for a SELECT.
            Options: How to read the text: 1 SQL, 2 table name; 128 added returns null instead of a recordset.
        """
    def BeginTrans(self) -> builtins.int:
        """Begins a transaction, nested if one is open, and returns its level; the outermost is 1."""
    def CommitTrans(self) -> None:
        """Commits the innermost transaction; raises 0x8004D00E if none is open."""
    def RollbackTrans(self) -> None:
        """Rolls back the innermost transaction; raises 0x8004D00E if none is open."""
    @builtins.property
    def Errors(self) -> classes.Errors:
        """What the database engine reported at its last failure; a success doesn't clear it."""
    def NewRecordset(self) -> classes.Recordset:
        """Returns a closed recordset that Open opens on this connection."""
    def __call__(self) -> builtins.str:
        """The provider and its settings, such as Provider=SQLite;Data Source=clinic.db."""


class Recordset(Object):
    """The rows of a statement: a snapshot with a cursor, which can be edited."""
    @builtins.property
    def Source(self) -> builtins.str:
        """The SQL statement, which Open uses if its own argument is left out."""
    @Source.setter
    def Source(self, Value: builtins.str) -> None: ...
    @builtins.property
    def ActiveConnection(self) -> classes.Connection:
        """The connection, or a connection string; null disconnects an open client recordset."""
    @ActiveConnection.setter
    def ActiveConnection(self, Value: typing.Any) -> None: ...
    @builtins.property
    def CursorType(self) -> enumerations.CursorTypeEnum:
        """The kind of cursor: 0 forward-only, 1 keyset, 2 dynamic, 3 static."""
    @CursorType.setter
    def CursorType(self, Value: typing.Union[enumerations.CursorTypeEnum, builtins.int]) -> None: ...
    @builtins.property
    def LockType(self) -> enumerations.LockTypeEnum:
        """The kind of lock: 1 read-only, 2 pessimistic, 3 optimistic, 4 batch optimistic."""
    @LockType.setter
    def LockType(self, Value: typing.Union[enumerations.LockTypeEnum, builtins.int]) -> None: ...
    @builtins.property
    def CursorLocation(self) -> enumerations.CursorLocationEnum:
        """Where the rows are kept: 2 server, 3 client; overrides the connection's setting."""
    @CursorLocation.setter
    def CursorLocation(self, Value: typing.Union[enumerations.CursorLocationEnum, builtins.int]) -> None: ...
    @builtins.property
    def State(self) -> enumerations.ObjectStateEnum:
        """The state: 0 closed, 1 open."""
    def Open(self, Source: typing.Any = ..., ActiveConnection: typing.Any = ..., CursorType: typing.Union[enumerations.CursorTypeEnum, builtins.int] = ..., LockType: typing.Union[enumerations.LockTypeEnum, builtins.int] = ..., Options: builtins.int = ...) -> None:
        """Runs a statement; the first row becomes current. Raises 3705 if the recordset is open.

        Arguments:
            Source: The SQL statement, or a table name with the option adCmdTable.
            ActiveConnection: An open connection, or a connection string.
            CursorType: The kind of cursor; if left out, the property CursorType is used.
            LockType: The kind of lock; if left out, the property LockType is used.
            Options: How to read the source: 1 SQL text, 2 table name.
        """
    def Close(self) -> None:
        """Releases the rows; raises 3219 while an edit is pending."""
    def Requery(self) -> None:
        """Runs the statement again; the first row becomes current."""
    @builtins.property
    def EOF(self) -> builtins.bool:
        """True after the last row, and if there are no rows."""
    @builtins.property
    def BOF(self) -> builtins.bool:
        """True before the first row, and if there are no rows."""
    @builtins.property
    def RecordCount(self) -> builtins.int:
        """The number of rows; -1 for a forward-only server cursor."""
    @builtins.property
    def AbsolutePosition(self) -> enumerations.PositionEnum:
        """The position of the current row, from 1; -1 without rows, -2 at BOF, -3 at EOF."""
    def MoveFirst(self) -> None:
        """Moves to the first row; raises 3021 if there are no rows."""
    def MoveLast(self) -> None:
        """Moves to the last row; raises 3021 if there are no rows."""
    def MoveNext(self) -> None:
        """Moves to the next row, or from the last row to EOF; raises 3021 at EOF."""
    def MovePrevious(self) -> None:
        """Moves to the previous row, or from the first row to BOF; raises 3021 at BOF."""
    def Move(self, NumRecords: builtins.int) -> None:
        """Moves by a number of rows, at most to BOF or EOF.

        Arguments:
            NumRecords: The number of rows; negative to move backward.
        """
    @builtins.property
    def Fields(self) -> classes.Fields:
        """The columns of the recordset, at the current row."""
    def Collect(self, Index: typing.Any) -> typing.Any:
        """The value of a column in the current row; a put begins an edit.

        Arguments:
            Index: The name of the column in any case, or its position from 0.
        """
    @builtins.property
    def EditMode(self) -> enumerations.EditModeEnum:
        """The pending edit: 0 none, 1 a changed row, 2 a new row."""
    def AddNew(self) -> None:
        """Begins a new row, which becomes the current one; a pending edit is written first."""
    def Update(self) -> None:
        """Writes the pending edit; does nothing without one. The row stays the current one."""
    def CancelUpdate(self) -> None:
        """Discards the pending edit or the new row."""
    def Delete(self, AffectRecords: typing.Union[enumerations.AffectEnum, builtins.int] = ...) -> None:
        """Deletes the current row from the table; the position doesn't change.

        Arguments:
            AffectRecords: Must be 1, the current row; any other value raises 3001.
        """
    def __call__(self, Index: typing.Any) -> classes.Field:
        """Returns a column; raises 3265 if there is none.

        Arguments:
            Index: The name of the column in any case, or its position from 0.
        """
    def __getitem__(self, key: typing.Any) -> classes.Field: ...


class Fields(Object):
    """The columns of a recordset, counted from 0."""
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of columns; raises 3704 while the recordset is closed."""
    def Item(self, Index: typing.Any) -> classes.Field:
        """Returns a column; raises 3265 if there is none.

        Arguments:
            Index: The name of the column in any case, or its position from 0.
        """
    def _NewEnum(self) -> typing.Iterator[typing.Any]:
        """Returns an enumerator over the columns, for a For Each loop."""
    def __call__(self, Index: typing.Any) -> classes.Field:
        """Returns a column; raises 3265 if there is none.

        Arguments:
            Index: The name of the column in any case, or its position from 0.
        """
    def __getitem__(self, key: typing.Any) -> classes.Field: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.Field]: ...


class Field(Object):
    """A column of a recordset, at the current row."""
    @builtins.property
    def Name(self) -> builtins.str:
        """The name of the column, as the database returns it."""
    @builtins.property
    def Type(self) -> enumerations.DataTypeEnum:
        """The data type of the column, the same for all rows."""
    @builtins.property
    def DefinedSize(self) -> builtins.int:
        """The number of characters that a text may have; 0 without a limit."""
    @builtins.property
    def Value(self) -> typing.Any:
        """The value in the current row; a put begins an edit, which Update of the recordset writes."""
    @Value.setter
    def Value(self, Value: typing.Any) -> None: ...
    @builtins.property
    def OriginalValue(self) -> typing.Any:
        """The value that the current row had before it was edited."""
    def __call__(self) -> typing.Any:
        """The value in the current row; a put begins an edit, which Update of the recordset writes."""


class Errors(Object):
    """The failures that the database engine reported last, counted from 0."""
    @builtins.property
    def Count(self) -> builtins.int:
        """The number of failures; 0 if the engine has not failed."""
    def Item(self, Index: builtins.int) -> classes.Error:
        """Returns a failure; raises 3265 for a position that doesn't exist.

        Arguments:
            Index: The position of the failure, from 0.
        """
    def Clear(self) -> None:
        """Removes all failures from the connection's list."""
    def _NewEnum(self) -> typing.Iterator[typing.Any]:
        """Returns an enumerator over the failures, for a For Each loop."""
    def __call__(self, Index: builtins.int) -> classes.Error:
        """Returns a failure; raises 3265 for a position that doesn't exist.

        Arguments:
            Index: The position of the failure, from 0.
        """
    def __getitem__(self, key: typing.Any) -> classes.Error: ...
    def __len__(self) -> builtins.int: ...
    def __iter__(self) -> typing.Iterator[classes.Error]: ...


class Error(Object):
    """A failure that a database engine reported."""
    @builtins.property
    def Number(self) -> builtins.int:
        """The number of the error, such as 0x80040E14 for a statement that can't be parsed."""
    @builtins.property
    def Source(self) -> builtins.str:
        """The name of the component that failed."""
    @builtins.property
    def Description(self) -> builtins.str:
        """The message of the failure."""
    @builtins.property
    def NativeError(self) -> builtins.int:
        """The number of the error in the database engine's own numbering."""
    @builtins.property
    def SQLState(self) -> builtins.str:
        """The SQLSTATE of the failure, 5 characters; empty if the engine reports none."""
    def __call__(self) -> builtins.str:
        """The message of the failure."""
