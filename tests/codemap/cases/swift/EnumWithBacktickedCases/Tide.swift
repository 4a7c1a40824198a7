enum Word {
    case `default`, `in`
    case `class`(Int)
}
