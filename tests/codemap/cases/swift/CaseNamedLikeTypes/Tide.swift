enum A {
    case String, Int(Int)
    case type, `self`, `Type`
}
