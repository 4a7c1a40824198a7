enum Option {
    @available(*, deprecated, message: "use b") case a
    @available(iOS 15, *)
    case b
}
