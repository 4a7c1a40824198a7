@objc public protocol A: NSObjectProtocol {
    @objc(b:) func b(_ c: Int)
    @available(iOS 15, *) func d() async
}
