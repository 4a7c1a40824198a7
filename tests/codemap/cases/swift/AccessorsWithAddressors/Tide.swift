struct A {
    var a: Int {
        _read { yield x }
        _modify { yield &x }
    }
    var b: Int { @storageRestrictions(initializes: c) init { c = newValue } get { c } }
    let d = 1
}
