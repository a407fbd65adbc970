#!/bin/sh
# Operators share the station's data through its group: what one of them writes, the next one must
# be able to replace.
umask 002
exec /opt/monitor_autoclava/monitor_autoclava "$@"
