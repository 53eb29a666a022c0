#!/usr/bin/env bash
# Types on the X keyboard and reads the text back from the machine's screen memory.
# usage: typing_test.sh PROGRAM LAYOUT-MAPPING
program=$1
layout=${2%-*}
mapping=${2#*-}
source "$(dirname "$0")/desktop.sh"

# The positional mapping knows places: the shifted digits are the machine's own there.
case $2 in
us-positional) typed='hello z1*2(' expected='HELLO Z1(2)' ;; # SHIFT 8 and SHIFT 9
us-symbolic) typed="hello z1 (2)*3=+:;!\"#%" expected="HELLO Z1 (2)*3=+:;!\"#%" ;;
gb-symbolic) typed="hello \"2#'1:;+*=?" expected="HELLO \"2#'1:;+*=?" ;;
fr-positional) typed='hello zaqwm' expected='HELLO ZAQWM' ;;
fr-symbolic) typed="hello zaqwm 12!(3)*/:;?#@" expected="HELLO ZAQWM 12!(3)*/:;?#@" ;;
de-positional) typed='hello zy1' expected='HELLO ZY1' ;;
de-symbolic) typed="hello zy (2)/3=+:;!\"#%@" expected="HELLO ZY (2)/3=+:;!\"#%@" ;;
esac
settings "KeyMapping = $([[ $mapping == symbolic ]] && echo 1 || echo 0)"

start_server
setxkbmap "$layout"
start_program
types "$typed" "$expected"
