let a = #/usr/{"/#
let b = #/
  ( "{" )   # a comment }
  /#
let c = ##/a/#b"/##
let d = 1
