// MARK: - Types
struct A {
    // MARK: Life
    init() {} // MARK: - not declared
    /* MARK: - In a block */
    func f() {
        // MARK: in a body
    }
    // mark: small
}
// MARK:
// MARK: -
