class A {
    static func a() {}
    class func b() {}
    private static func c() {}
}
