#!/usr/bin/env bash
# The console works from a place that it was not installed to.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

try_console "$installed"

# The shells find what completes its calls, which asks it.
for file in bash-completion/completions/vnconsole zsh/site-functions/_vnconsole; do
  [ -s "$installed/share/$file" ] || fail "no $file"
done
same "what is offered" "$(bash -c ". '$installed/share/bash-completion/completions/vnconsole'
  COMP_WORDS=(vnconsole ba); COMP_CWORD=1; _vnconsole '$installed/bin/vnconsole'
  echo \"\${COMPREPLY[*]}\"")" batch

# Where it is installed without the data of an add-in, it says so.
incomplete=$VN_WORK/incomplete
fresh "$incomplete"
cp -a "$installed/bin" "$installed/lib" "$installed/Server" "$incomplete"
rm "$incomplete/Server/CommonData/Configuration/VnCommonData10.xml"
status=0
told=$("$incomplete/bin/vnconsole" eval 1 2>&1) || status=$?
same "the status" "$status" 1
same "what is told" "$(head -n 1 <<<"$told")" \
  "vnconsole: there is no $incomplete/Server/CommonData/Configuration/VnCommonData10.xml"
