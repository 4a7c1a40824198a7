func swap<T, U>(_ a: inout T, with b: inout U) where T: P, U == Array<T> {
}
func make<T: P & Q>() -> [T] { [] }
func each<each T>(_ values: repeat each T) {}
