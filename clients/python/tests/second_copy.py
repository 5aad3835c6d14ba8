"""A program that opens a connection of a second copy of the platform library, and passes it to the classes of the first one.

    python3 second_copy.py SECOND-LIBRARY DATABASE

It prints what the classes stored and loaded, and the number of statements that the second copy reports.
"""
import ctypes
import os
import sys
from ctypes import CFUNCTYPE, POINTER, c_int32, c_uint32, c_void_p

import oxclass
from oxclass import _binary as binary
from oxclass._objects import wrap_owned
from oxclass._values import fill, take

IDS_OF_NAMES = CFUNCTYPE(c_int32, c_void_p, POINTER(binary.GUID), POINTER(c_void_p), c_uint32, c_uint32,
                         POINTER(c_int32))


def units(text):
    return ctypes.create_string_buffer(f"{text}\0".encode("utf-16-le"))


def call(pointer, member, *arguments):
    """Calls a member of an object by its name."""
    text = units(member)
    names, ids = (c_void_p * 1)(ctypes.addressof(text)), (c_int32 * 1)()
    assert binary._slot(pointer, 5, IDS_OF_NAMES)(pointer, binary.IID_NULL, names, 1, 0, ids) == 0, member
    variants = (binary.VARIANT * len(arguments))()
    for variant, argument in zip(reversed(variants), arguments):
        fill(variant, argument)
    parameters = binary.DISPPARAMS(rgvarg=variants, cArgs=len(arguments))
    result, failure = binary.VARIANT(), binary.EXCEPINFO()
    flags = binary.DISPATCH_METHOD | binary.DISPATCH_PROPERTYGET
    assert binary.invoke(pointer, ids[0], flags, parameters, result, failure) == 0, member
    return take(result)


def main():
    patient = oxclass.CreateObject("OXClass.cPatient")  # loads the first copy
    second = ctypes.CDLL(sys.argv[1], mode=os.RTLD_LOCAL | os.RTLD_DEEPBIND)
    pointer = c_void_p()
    assert second.OxCreateObject(units("ADODB.Connection"), ctypes.byref(pointer)) == 0
    call(pointer.value, "Open", f"Provider=SQLite;Data Source={sys.argv[2]}")
    connection = wrap_owned(pointer.value)
    assert type(connection) is not type(oxclass.CreateObject("ADODB.Connection")), "not an object of the first copy"

    patient.PatientID, patient.LastName = "P-1", "Ek"
    patient.Save(connection)
    doctor = oxclass.CreateObject("OXClass.cDoctor")
    doctor.DrName = "Åsa"
    doctor.SaveDoctor(connection)
    doctors = oxclass.CreateObject("OXClass.cDoctors")
    doctors.GetAllDoctors(connection)
    setting = oxclass.CreateObject("OXClass.cGlobalList")
    setting.ListID, setting.ListText = 77, "text"
    setting.Save(connection)
    print(patient.ID, doctor.drID, [each.DrName for each in doctors], setting.GlobalListID)


main()
