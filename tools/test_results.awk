# Reads ctest's verbose output. Shows each result as it comes, after a failure the program's own output, and
# writes "passed failed skipped" to the file named by counts. A GoogleTest program counts as its single tests,
# any other test as one, passed, failed or skipped as ctest says; a program that fails without naming a failed test (a
# crash, say) is one failure, and so is one that ctest lets pass without its own last word: Wine may end a program that
# crashed with code 0.

# The scenarios name the checks that they leave out, and why.
/^[0-9]+:  +skipped: / {
  sub(/^[0-9]+: +/, "  ")
  print
  next
}

/^[0-9]+: / {
  number = $1 + 0
  output[number] = output[number] $0 "\n"
  if ($0 ~ /^[0-9]+: \[==========\] Running /) unfinished[number] = 1
  if ($0 ~ /^[0-9]+: \[  PASSED  \] /) delete unfinished[number]
  if ($0 ~ /^[0-9]+: \[       OK \] /) ok[number]++
  # The list of failures at a program's end names them again, without a time.
  if ($0 ~ /^[0-9]+: \[  FAILED  \] .* \([0-9]+ ms\)/) bad[number]++
  if ($0 ~ /^[0-9]+: \[  SKIPPED \] .* \([0-9]+ ms\)/) skipped++
  next
}

/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: / {
  match($0, /#[0-9]+/)
  number = substr($0, RSTART + 1, RLENGTH - 1) + 0
  passed += ok[number]
  if ($0 ~ /\*\*\*Skipped /) {
    skipped++
    print
  } else if ($0 ~ / Passed / && !unfinished[number] && !bad[number]) {
    if (!ok[number]) passed++
    print
  } else {
    failed += bad[number] ? bad[number] : 1
    printf "%s%s\n", output[number], $0
  }
  delete output[number]
  fflush()
  next
}

/^ctest ended with / && $4 != 0 && !failed {
  print
  failed = 1
}

END {
  printf "%d %d %d\n", passed, failed, skipped > counts
}
