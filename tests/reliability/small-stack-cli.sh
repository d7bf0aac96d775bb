#!/bin/sh
# The tool on a 1 MiB stack with statements at the nesting limit: every command answers, with
# an exit status of its own (0 ok, 1 faults), never a signal.
set -u
tool=$1
ulimit -s 1024 || exit 1
minus=$(awk 'BEGIN { printf "SELECT "; for (i = 0; i < 9990; i++) printf "- "; printf "parcel_id FROM parcels" }')
nested=$(awk 'BEGIN { for (i = 0; i < 4990; i++) printf "SELECT parcel_id FROM ("; printf "SELECT parcel_id FROM parcels";
                      for (i = 0; i < 4990; i++) printf ") AS q" }')
ors=$(awk 'BEGIN { printf "SELECT parcel_id FROM parcels WHERE parcel_id = 0"; for (i = 1; i < 4990; i++) printf " OR parcel_id = %d", i }')
failed=0
for shape in minus nested ors; do
  eval "text=\$$shape"
  for command in tree format "format --no-context" check columns "rename parcels lots"; do
    printf '%s' "$text" | "$tool" $command > /dev/null 2> /tmp/velmor-small-stack.$$
    status=$?
    if [ "$status" -gt 1 ]; then
      echo "FAIL: $shape: velmor-sql $command exited with $status"; head -c 300 /tmp/velmor-small-stack.$$; echo
      failed=1
    fi
  done
done
rm -f /tmp/velmor-small-stack.$$
[ "$failed" -eq 0 ] && echo "small-stack commands: all answered"
exit "$failed"
