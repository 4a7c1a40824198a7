let a = /[{"]/
let b = /a\/b{2}"/
let c = text.firstMatch(of: /\{(.*)/)
let d = [/"/, /}/]
func f() -> Bool { text.contains(/["}]/) }
let g = 1
