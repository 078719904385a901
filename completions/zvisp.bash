# SPDX-License-Identifier: MIT
# bash completion for zvisp: option names, files for options that name one, known words and ranges.

_zvisp() {
  local actions='--verify --sign --erase --isp --ispuser --ispdiff --ispcopy --factoryisp
    --recordver --srstatus --flashtype --readsr --writesr --readsafeguard --writesafeguard
    --resetmcu --dumpflash --getstatus --userdefinedinfo --edpisp --enterispmode --mergefwinfo
    --senduserdefinedinfo --i2cwrite --getscalertype'
  local switches='--newboot --ispchannel --factory --sw --hw --reg --ddcci --flash --fwbin --cmd
    --fwbincmd --copydiffer --comparever --read --ddccicmd'
  local files='--boot --dumpname --fw --signfile --vkfile --skfile --subcert --nextvkfile
    --settingfile --fw1 --fw2 --fw3 --fw4 --fw5 --fw6 --fw7 --fw8 --fw9'
  local values='--dsmode --userdefined --veraddr --totalverlen --majorverlen --subverlen
    --recordvermode --dumpaddr --dumplen --comm --keypair --bank --bank1 --bank2 --bank3 --bank4
    --bank5 --bank6 --bank7 --bank8 --bank9 --flagaddr --flagdata --slave --searchfw --edpmode
    --write --writedata'

  # Where "=" breaks words, "--fw=a" arrives as three of them.
  local current=${COMP_WORDS[COMP_CWORD]} option=
  if ((COMP_CWORD > 0)); then
    option=${COMP_WORDS[COMP_CWORD - 1]}
  fi
  if [[ $current == = ]]; then
    current=
  elif [[ $option == = ]] && ((COMP_CWORD > 1)); then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  COMPREPLY=()
  case $option in
    --searchfw) COMPREPLY=($(compgen -W 'auto prefix userdefined' -- "$current")); return ;;
    --edpmode) COMPREPLY=($(compgen -W 'isp readver' -- "$current")); return ;;
    --dsmode) COMPREPLY=($(compgen -W '1 2 3 4' -- "$current")); return ;;
    --userdefined) COMPREPLY=($(compgen -W '1 2 3' -- "$current")); return ;;
    --recordvermode) COMPREPLY=($(compgen -W '0 1 2' -- "$current")); return ;;
    --keypair) COMPREPLY=($(compgen -W '0 1 2 3 4' -- "$current")); return ;;
    --comm) COMPREPLY=($(compgen -W "$(echo {1..16})" -- "$current")); return ;;
  esac

  local known
  for known in $files; do
    if [[ $option == "$known" ]]; then
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return
    fi
  done
  for known in $values; do
    [[ $option == "$known" ]] && return
  done
  COMPREPLY=($(compgen -W "$actions $switches $files $values" -- "$current"))
}

complete -F _zvisp zvisp zvisp-simulator
