let a = #"class "A" { \(b) "#
let c = ##"a "# b } "##
let d = #"\#(e("}")) {"#
let f = #"\"#
let g = 1
