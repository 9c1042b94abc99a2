# --help: prints the comment at the top of the script that sources this, and ends it; source it first. What stands behind
# -- belongs to another program.
# shellcheck shell=sh
for argument in "$@"; do
  case $argument in
    --) break ;;
    -h | --help)
      sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
      exit
      ;;
  esac
done
