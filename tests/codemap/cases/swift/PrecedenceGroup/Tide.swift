precedencegroup Exponent {
    higherThan: MultiplicationPrecedence
    associativity: right
    assignment: true
}
let x = 1
