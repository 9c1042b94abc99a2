@echo off
rem Tests the driver on this computer, without SteamVR, and shows what came of it: selftest.cmd [option...]
rem With options it shows nothing and waits for nobody; --help lists them. Exit codes: 0 nothing is bad, 1 something is.
if exist "%~dp0bin\ombrel_selftest.exe" goto run
echo This folder is not complete. Unpack the whole archive; look whether a virus scanner took a file.
pause
exit /b 1

:run
if not "%~1"=="" goto quiet
"%~dp0bin\ombrel_selftest.exe" --out "%~dp0."
set result=%errorlevel%
if exist "%~dp0report.html" start "" "%~dp0report.html"
pause
exit /b %result%

:quiet
"%~dp0bin\ombrel_selftest.exe" --out "%~dp0." %*
exit /b %errorlevel%
