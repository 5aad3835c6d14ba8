"""The clinic database of OXClass from Python: patients, series, images, cards, with the same objects as any client.

    import oxclass

    con = oxclass.CreateObject("ADODB.Connection")
    con.Open("Provider=SQLite;Data Source=clinic.db")
    patient = oxclass.CreateObject("OXClass.cPatient")
    if patient.LoadOnPatientIDorPDBID(con, "19800131-1234", 0):
        patient.LastName = "Åkesson"
        patient.Save(con)

Properties are attributes, operations are methods, ``help(patient)`` lists them. Collections count from 1 and take
keys: ``images(1)``, ``images["KEY"]``, ``len(images)``, ``for image in images``. ``None`` is a null object
reference or an empty value, ``Null`` a database's null, dates are ``datetime.datetime``, failures raise ``Error``. An
argument by reference is passed as a ``ByRef``. An object belongs to the thread that made it.

The library is loaded at the first use: ``oxclass._library`` lists the folders that are searched.
"""
from . import _classes  # noqa: F401  (registers the classes of objects)
from . import _exposed  # noqa: F401  (registers how Python objects are passed)
from ._creation import CreateObject, Global
from ._enumerations import *  # noqa: F401,F403
from ._enumerations import __all__ as _documented
from ._errors import Error
from ._events import OnMsgBox, Subscription, WithEvents
from ._objects import Object
from ._values import ByRef, Missing, Null

__version__ = "1.30"
__all__ = ["ByRef", "CreateObject", "Error", "Global", "Missing", "Null", "Object", "OnMsgBox", "Subscription",
           "WithEvents", "__version__"] + _documented
