struct Outer {
    class Middle {
        enum Inner {
            case one
        }
        var a = 1
    }
    func after() {}
}
