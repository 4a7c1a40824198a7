class A {
    class func make() -> A { A() }
    class var shared: A { A() }
    override class var layerClass: AnyClass { B.self }
    class override func load() {}
    final class func last() {}
    final class Inner {}
}
