}}}{{{
let a = 1
