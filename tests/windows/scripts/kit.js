// What the scripts share; see kit.vbs.
var checks = 0, failures = 0;

function Check(what, expected, actual) {
    ++checks;
    if (expected === actual) return;
    ++failures;
    WScript.Echo("FAILED: " + what + ": expected " + expected + " (" + typeof expected + "), got " + actual + " (" + typeof actual + ")");
}

function OpenClinic() {
    var con = new ActiveXObject("OXPlatform.Connection");
    con.Open("Provider=SQLite;Data Source=clinic.db");
    return con;
}

function Done() {
    WScript.Echo(failures == 0 ? "done: " + checks + " checks" : "FAILED: " + failures + " of " + checks + " checks");
}
