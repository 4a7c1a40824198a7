private extension Tide {
    var secret: Int { 1 }
}
fileprivate extension String { func trimmed() -> String { self } }
