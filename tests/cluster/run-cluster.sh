#!/bin/sh
# Runs a Slurm cluster of a controller and two nodes, n1 and n2, on this machine alone. Its state lies in a folder of its
# own, and nothing of an installed cluster is used or changed but the programs.
#
#   tests/cluster/run-cluster.sh FOLDER
#
# FOLDER is created. When jobs can be sent, "ready" is printed; `export SLURM_CONF=FOLDER/slurm.conf` in another shell makes
# sbatch, squeue and the others use this cluster. Where it cannot run, "skip: REASON" is printed. Lines of standard input:
#
#   kill NAME        ends "n1", "n2" or "controller" with all its processes, as if the machine had lost its power. A
#                    controller may forget what happened in the seconds before
#   stop NAME        ends it as an administrator would
#   start NAME       starts it again
#   hide NAME PATH   hides a folder from "n1" or "n2" until the node is started again
#   drain NAME WHY   takes "n1" or "n2" out of service, with a reason
#   resume NAME      takes it into service again
#
# At the end of standard input, or when the script ends for another reason, all processes end and FOLDER is removed. Each
# machine is a process namespace whose first process dies with this script, so that not even SIGKILL leaves one behind.
set -u

folder=${1:?names no folder}
skip() { echo "skip: $*"; exit 0; }

[ "$(id -u)" = 0 ] || skip "only root can start a Slurm cluster"
for program in munged slurmctld slurmd sbatch; do
    command -v $program >/dev/null || skip "$program is missing (packages munge, slurmctld, slurmd, slurm-client)"
done
machine="setpriv --pdeathsig KILL unshare --pid --fork --kill-child --mount-proc"
$machine true 2>/dev/null || skip "this machine allows no process namespaces"
mkdir "$folder" || skip "$folder cannot be created"

# Below the ports that the system gives away, and different for clusters that run at the same time.
port=$((20000 + $$ % 1200 * 10))
host=$(hostname -s)

finish() {
    trap '' EXIT
    # shellcheck disable=SC2046
    kill -9 $(cat "$folder"/*.pid) 2>/dev/null
    wait
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 1' HUP INT TERM

mkdir "$folder/munge" "$folder/state" "$folder/n1" "$folder/n2"
# Others than root reach the socket.
chmod 711 "$folder" "$folder/munge"
(umask 077; head -c 128 /dev/urandom >"$folder/munge/key")

# The timeouts are as short as Slurm can bear, so that a dead node is noticed within ten seconds.
cat >"$folder/slurm.conf" <<END
ClusterName=quillstar-test
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=$port
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
AuthInfo=socket=$folder/munge/socket
CredType=cred/munge
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/%n
SlurmctldPidFile=$folder/state/slurmctld
SlurmdPidFile=$folder/%n/slurmd
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core_Memory
SchedulerParameters=sched_interval=1,sched_min_interval=100000,batch_sched_delay=0,bf_interval=1
Licenses=brush:1
SlurmctldTimeout=10
SlurmdTimeout=3
MessageTimeout=2
KillWait=3
ReturnToService=2
DebugFlags=NO_CONF_HASH
NodeName=n1 NodeHostname=$host NodeAddr=127.0.0.1 Port=$((port + 1)) CPUs=1 RealMemory=2000 Feature=first State=UNKNOWN
NodeName=n2 NodeHostname=$host NodeAddr=127.0.0.1 Port=$((port + 2)) CPUs=1 RealMemory=2000 Feature=second State=UNKNOWN
PartitionName=main Nodes=n1,n2 Default=YES MaxTime=INFINITE State=UP
END
export SLURM_CONF="$folder/slurm.conf"

# launch NAME COMMAND...: in the background as a machine of its own.
launch() {
    name=$1
    shift
    # shellcheck disable=SC2086
    $machine "$@" </dev/null >>"$folder/$name.log" 2>&1 &
    echo $! >"$folder/$name.pid"
}

# process NAME: the id of the machine's first process.
process() { cat /proc/"$(cat "$folder/$1.pid")"/task/*/children | tr -d " "; }

start() {
    case $1 in
    controller) launch controller slurmctld -D ;;
    n1 | n2) launch "$1" slurmd -D -N "$1" ;;
    esac
}

launch munge munged --foreground --force --key-file="$folder/munge/key" --socket="$folder/munge/socket" \
    --pid-file="$folder/munge/pid" --log-file="$folder/munge/log" --seed-file="$folder/munge/seed"
while ! [ -S "$folder/munge/socket" ]; do
    kill -0 "$(cat "$folder/munge.pid")" 2>/dev/null || skip "munged ends: $(tail -n 1 "$folder/munge.log")"
    sleep 0.1
done
start controller
start n1
start n2
attempts=0
until [ "$(sinfo -h -t idle -o %D 2>/dev/null)" = 2 ]; do
    attempts=$((attempts + 1))
    [ $attempts -lt 150 ] || skip "the nodes do not come up: $(grep -h error "$folder"/*.log | tail -n 3 | tr '\n' ' ')"
    sleep 0.2
done
echo ready

while read -r verb name what; do
    case $verb in
    kill) kill -9 "$(cat "$folder/$name.pid")" ;;
    start) start "$name" ;;
    stop) kill -TERM "$(process "$name")" ;;
    hide) nsenter -t "$(process "$name")" -m mount -t tmpfs none "$what" ;;
    drain) scontrol update nodename="$name" state=drain reason="$what" ;;
    resume) scontrol update nodename="$name" state=resume ;;
    esac
    echo "done: $verb $name${what:+ $what}"
done
