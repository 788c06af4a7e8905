// The C interface of the library for .NET: tovalin/tovalin_c.h by P/Invoke.

using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace Tovalin {

// What the library raises. A handler may throw one, too.
public sealed class TovalinError : Exception {
  public readonly int Number;
  public TovalinError(int number, string source, string description) : base(description) {
    Number = number;
    Source = source;
  }
}

// An object of the library, used by one thread at a time.
public sealed class TovalinObject : IDisposable {
  public delegate void Handler(object[] arguments);

  ulong handle;

  public TovalinObject(string className) {
    var error = Native.Error.Wide;
    Native.Check(Native.tov_create(className, out handle, ref error), ref error);
  }
  internal TovalinObject(ulong taken) { handle = taken; }
  ~TovalinObject() { Dispose(); }  // in whatever thread: the library sees to it

  public void Dispose() {
    if (handle != 0) Native.tov_release(handle, IntPtr.Zero);
    handle = 0;
    GC.SuppressFinalize(this);
  }

  internal ulong Handle {
    get {
      if (handle == 0) throw new ObjectDisposedException("TovalinObject");
      return handle;
    }
  }

  public object Call(string member, params object[] arguments) {
    return Invoke(member, Native.Method, arguments);
  }
  public object Get(string member, params object[] arguments) {
    return Invoke(member, Native.Get, arguments);
  }
  public void Let(string member, params object[] arguments) {
    Invoke(member, Native.Let, arguments);
  }

  // What the member changes by reference stands in `arguments` afterwards.
  object Invoke(string member, int kind, object[] arguments) {
    var values = new Native.Value[arguments.Length];
    var result = Native.Value.Wide;
    var error = Native.Error.Wide;
    try {
      for (int i = 0; i < values.Length; ++i) values[i] = Native.Value.From(arguments[i]);
      int number = Native.tov_call(Handle, member, kind, values, (UIntPtr)(uint)values.Length,
                                   ref result, ref error);
      GC.KeepAlive(this);
      for (int i = 0; i < values.Length; ++i) arguments[i] = values[i].ToObject(arguments[i]);
      Native.Check(number, ref error);
      return result.ToObject(null);
    } finally {
      for (int i = 0; i < values.Length; ++i) values[i].Clear();
      result.Clear();
    }
  }

  // Answers the number that Detach takes.
  public int Attach(string eventName, Handler handler) {
    // The library holds the handler until it says that it is done with it.
    var held = GCHandle.Alloc(handler);
    var native = new Native.NativeHandler { Function = Native.Dispatch,
                                            Context = GCHandle.ToIntPtr(held),
                                            Release = Native.Forget,
                                            Encoding = Native.Utf16 };
    var error = Native.Error.Wide;
    int attachment;
    int number = Native.tov_attach(Handle, eventName, ref native, out attachment, ref error);
    if (number != 0) held.Free();
    Native.Check(number, ref error);
    return attachment;
  }
  public void Detach(string eventName, int attachment) {
    var error = Native.Error.Wide;
    Native.Check(Native.tov_detach(Handle, eventName, attachment, ref error), ref error);
  }
}

static class Native {
  const string Library = "tovalin";
  const CallingConvention C = CallingConvention.Cdecl;

  public const int Method = 1, Get = 2, Let = 4;
  public const int Utf16 = 1;

  enum Type : ushort {
    Empty = 0, Null = 1, Integer = 2, Long = 3, Single = 4, Double = 5, Currency = 6, Date = 7,
    String = 8, Object = 9, Error = 10, Boolean = 11, Byte = 17, Array = 8204
  }

  [StructLayout(LayoutKind.Explicit, Size = 24)]
  public struct Value {
    [FieldOffset(0)] Type type;
    [FieldOffset(2)] byte encoding;
    [FieldOffset(8)] long i64;
    [FieldOffset(8)] byte u8;
    [FieldOffset(8)] short i16;
    [FieldOffset(8)] int i32;
    [FieldOffset(8)] float f32;
    [FieldOffset(8)] double f64;
    [FieldOffset(8)] IntPtr utf16;
    [FieldOffset(8)] ulong handle;
    [FieldOffset(16)] ulong length;

    public static Value Wide { get { return new Value { encoding = Utf16 }; } }

    // A value for the library, which owns its text or handle.
    public static Value From(object given) {
      if (given == null) return Wide;
      if (given is DBNull) return new Value { type = Type.Null, encoding = Utf16 };
      if (given is Missing) return new Value { type = Type.Error, i32 = -2147352572 };
      if (given is double) return new Value { type = Type.Double, f64 = (double)given };
      if (given is int) return new Value { type = Type.Long, i32 = (int)given };
      if (given is short) return new Value { type = Type.Integer, i16 = (short)given };
      if (given is byte) return new Value { type = Type.Byte, u8 = (byte)given };
      if (given is float) return new Value { type = Type.Single, f32 = (float)given };
      if (given is bool) return new Value { type = Type.Boolean, i32 = (bool)given ? 1 : 0 };
      if (given is decimal)  // raises what does not fit
        return new Value { type = Type.Currency, i64 = decimal.ToOACurrency((decimal)given) };
      if (given is DateTime)
        return new Value { type = Type.Date, f64 = ((DateTime)given).ToOADate() };
      var lent = Wide;
      var thing = given as TovalinObject;
      if (thing != null) {
        lent.type = Type.Object;
        lent.handle = thing.Handle;
        return lent.Copy();
      }
      var text = given as string;
      if (text == null) throw new ArgumentException("Tipo no admitido: " + given.GetType());
      var pinned = GCHandle.Alloc(text, GCHandleType.Pinned);
      lent.type = Type.String;
      lent.utf16 = pinned.AddrOfPinnedObject();
      lent.length = (ulong)text.Length;
      try {
        return lent.Copy();
      } finally {
        pinned.Free();
      }
    }

    // `former` is what stood here before: an object that is the same is kept, and what
    // has no counterpart here.
    public object ToObject(object former) {
      switch (type) {
        case Type.Empty: return null;
        case Type.Null: return DBNull.Value;
        case Type.Integer: return i16;
        case Type.Long: return i32;
        case Type.Single: return f32;
        case Type.Double: return f64;
        case Type.Currency: return decimal.FromOACurrency(i64);
        case Type.Date: return DateTime.FromOADate(f64);
        case Type.Boolean: return i32 != 0;
        case Type.Byte: return u8;
        case Type.String: return Marshal.PtrToStringUni(utf16, (int)length);
        case Type.Object: return ToTovalinObject(former as TovalinObject);
        default: return former;
      }
    }

    object ToTovalinObject(TovalinObject former) {
      if (handle == 0) return null;
      if (former != null && former.Handle == handle) return former;
      return new TovalinObject(Copy().handle);
    }

    Value Copy() {
      var copy = Wide;
      var error = Error.Wide;
      Check(tov_copy(ref this, ref copy, ref error), ref error);
      return copy;
    }

    public void Clear() { tov_clear(ref this); }
  }

  public sealed class Missing {}

  [StructLayout(LayoutKind.Sequential)]
  public struct Error {
    public int Number, Encoding, Position, Length;
    public Value Source, Description;

    public static Error Wide { get { return new Error { Encoding = Utf16 }; } }
  }

  [StructLayout(LayoutKind.Sequential)]
  public struct Invocation {
    public IntPtr Name;
    public int Kind;
    public uint Count;
    public IntPtr Arguments;
    public Value Result;
    public Error Error;
  }

  [UnmanagedFunctionPointer(C)]
  public delegate void HandlerFunction(IntPtr context, ref Invocation invocation);
  [UnmanagedFunctionPointer(C)]
  public delegate void ReleaseFunction(IntPtr context);

  [StructLayout(LayoutKind.Sequential)]
  public struct NativeHandler {
    public HandlerFunction Function;
    public IntPtr Context;
    public ReleaseFunction Release;
    public int Encoding;
  }

  // Kept here, so that the library never calls a function that was collected.
  public static readonly HandlerFunction Dispatch = OnCall;
  public static readonly ReleaseFunction Forget =
      context => GCHandle.FromIntPtr(context).Free();

  // No exception may leave a handler: it goes into the error.
  static void OnCall(IntPtr context, ref Invocation invocation) {
    try {
      var handler = (TovalinObject.Handler)GCHandle.FromIntPtr(context).Target;
      int count = (int)invocation.Count, size = Marshal.SizeOf(typeof(Value));
      var before = new object[count];
      for (int i = 0; i < count; ++i) before[i] = At(invocation.Arguments, i).ToObject(null);
      var arguments = (object[])before.Clone();
      handler(arguments);
      for (int i = 0; i < count; ++i)
        if (!Equals(arguments[i], before[i]))
          Marshal.StructureToPtr(Value.From(arguments[i]), invocation.Arguments + i * size, false);
      foreach (var lent in before)
        if (lent is TovalinObject) ((TovalinObject)lent).Dispose();
    } catch (TovalinError raised) {
      SetError(ref invocation.Error, raised.Number, raised.Source, raised.Message);
    } catch (Exception raised) {
      SetError(ref invocation.Error, -2147221504, raised.GetType().Name, raised.Message);
    }
  }

  static Value At(IntPtr values, int index) {
    return (Value)Marshal.PtrToStructure(values + index * Marshal.SizeOf(typeof(Value)),
                                         typeof(Value));
  }

  static void SetError(ref Error error, int number, string source, string description) {
    error.Number = number;
    error.Source = Value.From(source ?? "");
    error.Description = Value.From(description);
  }

  public static void Check(int number, ref Error error) {
    if (number == 0) return;
    var raised = new TovalinError(number, (string)error.Source.ToObject(null),
                                  (string)error.Description.ToObject(null));
    tov_clear_error(ref error);
    throw raised;
  }

  [DllImport(Library, CallingConvention = C)]
  public static extern int tov_create(string className, out ulong handle, ref Error error);
  [DllImport(Library, CallingConvention = C)]
  public static extern int tov_release(ulong handle, IntPtr noError);
  [DllImport(Library, CallingConvention = C)]
  public static extern int tov_call(ulong handle, string member, int kind, [In, Out] Value[] values,
                                    UIntPtr count, ref Value result, ref Error error);
  [DllImport(Library, CallingConvention = C)]
  public static extern int tov_attach(ulong handle, string eventName, ref NativeHandler handler,
                                      out int attachment, ref Error error);
  [DllImport(Library, CallingConvention = C)]
  public static extern int tov_detach(ulong handle, string eventName, int attachment,
                                      ref Error error);
  [DllImport(Library, CallingConvention = C)]
  static extern int tov_copy(ref Value value, ref Value copy, ref Error error);
  [DllImport(Library, CallingConvention = C)]
  static extern void tov_clear(ref Value value);
  [DllImport(Library, CallingConvention = C)]
  static extern void tov_clear_error(ref Error error);
}

}  // namespace Tovalin
