"""The clinic database of OXClass from Python: patients, series, images, cards, with the same objects as any client.

    import oxclass

    con = oxclass.CreateObject("ADODB.Connection")
    con.Open("Provider=SQLite;Data Source=clinic.db")
    patient = oxclass.CreateObject("OXClass.cPatient")
    if patient.LoadOnPatientIDorPDBID(con, "19800101-1234", 0):
        patient.LastName = "Åkesson"
        patient.Save(con)

Properties are attributes, operations are methods, ``help(patient)`` lists them. Collections count from 1 and take
keys: ``images(1)``, ``images["KEY"]``, ``len(images)``, ``for image in images``. ``None`` is nothing and empty,
``Null`` a database's null, dates are ``datetime.datetime``, failures raise ``Error``. An argument that comes back is
given as a ``ByRef``. An object belongs to the thread that made it.

The library is loaded at the first use: see ``oxclass._library`` for where it is looked for.
"""
from . import _classes  # noqa: F401  (provides the classes of objects)
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
