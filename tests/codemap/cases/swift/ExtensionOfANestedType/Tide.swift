extension Outer.Middle.Inner: P {
    class Deep {}
}
