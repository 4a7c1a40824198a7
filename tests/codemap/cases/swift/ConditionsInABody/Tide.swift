func f() {
    #if DEBUG
    if a {
    #elseif B
    if b {
    #else
    if c {
    #endif
        let x = 1
    }
}
func g() {}
