extension Tide {
    func ebb() {}
}
