prefix operator √
postfix operator ++
infix operator +++: AdditionPrecedence
infix operator ≤
infix operator <=>
infix operator .+
prefix func √ (number: Double) -> Double { number }
func ≤ (left: Int, right: Int) -> Bool { true }
func .+ (left: Int, right: Int) -> Int { left }
