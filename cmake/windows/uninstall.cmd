@echo off
rem Removes the classes of OXClass.dll from the registry. Needs the rights of an administrator.
"%SystemRoot%\System32\regsvr32.exe" /u /s "%~dp0OXClass.dll"
if errorlevel 1 goto failed
echo OXClass is unregistered. The folder can be deleted.
exit /b 0
:failed
echo OXClass.dll could not be unregistered: run this file as administrator.
exit /b 1
