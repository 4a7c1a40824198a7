#!/usr/bin/swift
import Foundation
print("a")
let a = 1
if let b = a as Int?, b > 0 {
    let c = 1
} else if a == 2 {
    let d = 1
} else {
    let e = 1
}
guard let f = a as Int? else { exit(1) }
for i in 0..<3 { let g = i }
while let h = next() { print(h) }
repeat { let j = 1 } while a < 3
switch a {
case let k where k > 1: let l = k
default: break
}
do { let m = try f() } catch let error { print(error) }
defer { let n = 1 }
func o() {}
