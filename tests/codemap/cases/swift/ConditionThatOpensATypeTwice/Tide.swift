#if os(iOS)
class A: UIView {
#else
class B: NSView {
#endif
    func f() {}
}
let c = 1
