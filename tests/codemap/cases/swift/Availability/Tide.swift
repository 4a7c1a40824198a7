@available(iOS 13.0, *)
@available(macOS, introduced: 10.15, deprecated: 12, message: "class X {")
struct A {}
func f() { if #available(iOS 14, *) { let a = 1 } }
let b = 1
