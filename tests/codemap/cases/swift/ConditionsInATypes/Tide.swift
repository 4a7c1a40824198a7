class A {
#if os(iOS)
    var view: UIView
    func f() {}
#else
    var view: NSView
#endif
    func g() {}
}
