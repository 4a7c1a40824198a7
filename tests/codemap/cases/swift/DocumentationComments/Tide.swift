/**
 Describes {
 - Parameter a: "open
 */
func b(a: Int) {}
/// ```
/// func c() {
/// ```
func d() {}
