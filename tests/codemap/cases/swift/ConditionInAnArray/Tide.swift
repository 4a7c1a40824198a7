let a = [
    1,
    #if DEBUG
    2,
    #endif
]
let b = 1
