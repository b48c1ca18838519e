// Lists the members of a club through the registered server. The arguments that are passed back are ref arguments of a
// late call, so no generated classes are needed:
//   csc /platform:x64 Members.cs
using System;
using System.Reflection;
using System.Threading;

static class Members
{
    static readonly Type Server = Type.GetTypeFromProgID("TaviMembership.MembershipDatabase", true);

    static object Call(object database, string operation, object[] arguments, params int[] passedBack)
    {
        var modifier = new ParameterModifier(Math.Max(arguments.Length, 1));
        foreach (int index in passedBack) modifier[index] = true;
        return Server.InvokeMember(operation, BindingFlags.InvokeMethod, null, database, arguments,
                                   new[] { modifier }, null, null);
    }

    [STAThread]
    static int Main(string[] given)
    {
        try
        {
            object database = Activator.CreateInstance(Server);
            if (given.Length > 0)
                Server.InvokeMember("DatabaseFolder", BindingFlags.SetProperty, null, database, new object[] { given[0] });

            var row = new object[] { 0, "", 0.0, (short)0 };
            for (var found = (bool)Call(database, "GetFirstMember", row, 0, 1, 2); found;
                 found = (bool)Call(database, "GetNextMember", row, 0, 1, 2))
                Console.WriteLine("{0}\t{1}\t{2:F2}", row[0], row[1], row[2]);
            Call(database, "EndGet", new object[0]);
            return 0;
        }
        catch (TargetInvocationException error)
        {
            Console.Error.WriteLine(error.InnerException.Message);
            return 1;
        }
    }
}
