let a: [String: () -> Void] = [
    "{": { let b = "}" },
    "c": { },
]
let d = 1
