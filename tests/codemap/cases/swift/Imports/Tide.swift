import Foundation
import struct Tide.Harbour
import class UIKit.UIView
import func Darwin.exit
@testable import Tidewatch
@_exported import enum Tide.Level
public import Model; let a = 1
