#!/usr/bin/env bash
# service_test.sh: packaging/stopngo@.service as systemd's own tools judge it.
#
#     service_test.sh STOPNGO
. "$(dirname "$0")/begin.sh"
# The program where it is, and no page that is not installed.
sed "s|/usr/bin/stopngo|$stopngo|; /^Documentation=/d" "$here/../../packaging/stopngo@.service" >"$folder/stopngo@front.service"
systemd-analyze verify "$folder/stopngo@front.service"
# In tenths: 2.0 of 10.
systemd-analyze security --offline=true --threshold=20 "$folder/stopngo@front.service" | tail -1
