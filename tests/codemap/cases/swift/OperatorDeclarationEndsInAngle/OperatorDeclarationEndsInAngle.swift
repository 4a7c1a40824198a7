infix operator >>>
infix operator <<<

let view = 1
prefix operator !=<
postfix operator <<<
func <<<A, B>(a: A, b: B) -> B { b }
