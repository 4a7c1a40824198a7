let a = #"""#
let b = #"""" "#
let c = 1
