@echo off
rem Makes SteamVR forget the driver in this folder: uninstall.cmd [/quiet]
rem Hands over to install.cmd, which finds SteamVR and says what it did. No call: it would expand the path twice.
"%~dp0install.cmd" /uninstall %*
