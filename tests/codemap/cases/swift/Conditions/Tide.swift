#if DEBUG
let a = 1
#elseif os(iOS)
let b = 2
#else
let c = 3
#endif
let d = 4
