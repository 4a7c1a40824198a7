enum A {
    case a
    func f() { switch self { case .a: break; case .b: break } }
    case b
}
