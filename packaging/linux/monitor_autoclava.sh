#!/bin/sh
# Operators share the station's data through its group: each must be able to replace files that another
# one wrote.
umask 002
exec /opt/monitor_autoclava/monitor_autoclava "$@"
