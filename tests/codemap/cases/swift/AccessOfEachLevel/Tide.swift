open class A {
    open func a() {}
    public func b() {}
    package func c() {}
    internal func d() {}
    fileprivate func e() {}
    private func f() {}
    public internal(set) var g = 1
    func h() {}
}
