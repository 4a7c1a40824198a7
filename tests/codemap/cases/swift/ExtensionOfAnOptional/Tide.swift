extension Optional<Int> { var a: Int { 0 } }
extension (any P) { func b() {} }
