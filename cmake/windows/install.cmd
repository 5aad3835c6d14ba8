@echo off
rem Registers the classes of OXClass.dll, which is in the folder of this file. Needs the rights of an administrator.
"%SystemRoot%\System32\regsvr32.exe" /s "%~dp0OXClass.dll"
if errorlevel 1 goto failed
echo OXClass is registered.
exit /b 0
:failed
echo OXClass.dll could not be registered: run this file as administrator.
exit /b 1
