struct A {
    #if os(iOS)
    typealias B = UIView
    #elseif os(macOS)
    typealias B = NSView
    #else
    #error("no")
    #endif
}
