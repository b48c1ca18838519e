@echo off
rem Removes the entries of TaviMembership.dll for everybody who uses this computer. Needs administrator rights.
setlocal
set "tool=@TOOL_FOLDER@\regsvr32.exe"
"%tool%" /u /s "%~dp0TaviMembership.dll"
if errorlevel 1 goto failed
echo TaviMembership (@KIND@) is no longer registered for the users of this computer.
set result=0
goto finished
:failed
echo regsvr32 could not remove the entries of "%~dp0TaviMembership.dll": error %errorlevel%.
echo (3: the library cannot be loaded, 5: the registry refused to remove them.)
echo Start this file with a right click and "Run as administrator".
set result=1
:finished
if "%~1"=="" pause
exit /b %result%
