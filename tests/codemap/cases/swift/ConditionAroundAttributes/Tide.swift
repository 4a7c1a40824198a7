struct A {
    #if swift(>=5.9)
    @available(iOS 17, *)
    #endif
    func f() {}
    #if canImport(UIKit) && !os(tvOS) // here
    @objc
    #endif
    var a: Int
}
