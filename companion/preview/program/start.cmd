@echo off
rem Starts the preview and opens its page. Start the runtime after it: the driver refuses to start while no companion runs.
"%~dp0Ombrel.exe" --open %*
if errorlevel 1 pause
