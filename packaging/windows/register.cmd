@echo off
rem Registers TaviMembership.dll for everybody who uses this computer. Needs administrator rights.
setlocal
set "tool=@TOOL_FOLDER@\regsvr32.exe"
"%tool%" /s "%~dp0TaviMembership.dll"
if errorlevel 1 goto failed
echo TaviMembership (@KIND@) is registered for all users of this computer.
set result=0
goto finished
:failed
echo regsvr32 could not register "%~dp0TaviMembership.dll": error %errorlevel%.
echo (3: the library cannot be loaded, 5: the registry refused the entries.)
echo Start this file with a right click and "Run as administrator",
echo or use register-for-me.cmd, which needs no such rights.
set result=1
:finished
if "%~1"=="" pause
exit /b %result%
