@discardableResult func a() -> Int { 1 }
@available(iOS 13, *)
@inlinable
public func b() {}
@IBAction private func tapped(_ sender: Any) {}
