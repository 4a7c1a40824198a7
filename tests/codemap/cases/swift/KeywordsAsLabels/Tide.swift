let a = f(class: 1, func: 2, struct: 3,
          extension: 4, enum: 5)
let b = g(
    protocol: 1,
    class: 2
)
let c = 1
