@echo off
rem Tells what stands in the way of a picture: check.cmd [--bundle FOLDER] [--json] [--language en or de] [/quiet]
rem /quiet does not wait for a key. Exit codes: 0 well, 1 something was found, 2 it could not look.
rem install.cmd and uninstall.cmd hand over to this script, and it to the program that does all of it.
if exist "%~dp0bin\win64\ombrel_doctor.exe" goto run
echo Nothing was changed: this folder is not complete.
echo   "%~dp0"
echo It lacks bin\win64\ombrel_doctor.exe. Unpack the whole archive; look whether a virus scanner took that file.
echo By hand, with the folder of SteamVR put in, this registers the driver:
echo   "<SteamVR>\bin\win64\vrpathreg.exe" adddriver "%~dp0."
for %%A in (%*) do if /i "%%~A"=="/quiet" exit /b 1
pause
exit /b 1

:run
"%~dp0bin\win64\ombrel_doctor.exe" --pause %*
exit /b %errorlevel%
