final class A: NSObject, B, C {
    weak var delegate: (any D & E)?
}
extension A: F {
    func g(_ h: I, didChange j: K) {}
}
