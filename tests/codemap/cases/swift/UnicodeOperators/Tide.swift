infix operator →
func → (a: Int, b: Int) -> Int { a }
prefix func ∑ (a: [Int]) -> Int { 0 }
func • (a: Int, b: Int) -> Int { a }
