@available(iOS 13, *)
@MainActor
extension A.B: C {}
