func stack(@ViewBuilder content: () -> Content, @TideClamped(0, 5) height h: Int) {}
func use(a: borrowing Tide, b: consuming Tide, c: inout Tide, d: isolated Harbour, e: sending Tide) {}
