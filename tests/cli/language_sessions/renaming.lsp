# A program gets another name: in the calls of its own folder's texts, and in its file where the editor renames files.
> {"id":1,"method":"initialize","params":{"capabilities":{"workspace":{"workspaceEdit":{"documentChanges":true,"resourceOperations":["create","rename","delete"]}}}}}
< {"id":1,"result":{"capabilities":{"renameProvider":true}}}
> {"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///none%20there/SUB.txt","version":4,"text":"Prog \"SUB\"\n"}}}
< {"method":"textDocument/publishDiagnostics"}
> {"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///none there/MAIN.txt","text":"A\nProg \"sub\"\n"}}}
< {"method":"textDocument/publishDiagnostics"}
> {"method":"textDocument/didOpen","params":{"textDocument":{"uri":"file:///other/SUB.txt","text":"Prog \"SUB\"\n"}}}
< {"method":"textDocument/publishDiagnostics"}
> {"id":2,"method":"textDocument/references","params":{"textDocument":{"uri":"file:///none there/MAIN.txt"},"position":{"line":1,"character":7}}}
< {"id":2,"result":[{"uri":"file:///none there/MAIN.txt"},{"uri":"file:///none%20there/SUB.txt"}]}
> {"id":3,"method":"textDocument/rename","params":{"textDocument":{"uri":"file:///none there/MAIN.txt"},"position":{"line":1,"character":7},"newName":"NEW 1"}}
< {"id":3,"result":{"documentChanges":[{"textDocument":{"uri":"file:///none there/MAIN.txt","version":null},"edits":[{"newText":"NEW 1","range":{"start":{"line":1,"character":6},"end":{"line":1,"character":9}}}]},{"textDocument":{"uri":"file:///none%20there/SUB.txt","version":4},"edits":[{"newText":"NEW 1"}]},{"kind":"rename","oldUri":"file:///none%20there/SUB.txt","newUri":"file:///none%20there/NEW%201.txt"}]}}
# A name that another has, and one that no file can have.
> {"id":4,"method":"textDocument/rename","params":{"textDocument":{"uri":"file:///none there/MAIN.txt"},"position":{"line":1,"character":7},"newName":"main"}}
< {"id":4,"error":{"code":-32803,"message":"This folder already holds an item of that name."}}
> {"id":5,"method":"textDocument/rename","params":{"textDocument":{"uri":"file:///none there/MAIN.txt"},"position":{"line":1,"character":7},"newName":"../A"}}
< {"id":5,"error":{"code":-32803,"message":"no file can have this name"}}
# An editor that edits by versions, but renames no files, is told.
> {"id":6,"method":"initialize","params":{"capabilities":{"workspace":{"workspaceEdit":{"documentChanges":true,"resourceOperations":["create"]}}}}}
< {"id":6,"result":{}}
> {"id":7,"method":"textDocument/rename","params":{"textDocument":{"uri":"file:///other/SUB.txt"},"position":{"line":0,"character":7},"newName":"NEW"}}
< {"method":"window/showMessage","params":{"type":2,"message":"SUB.txt keeps its name, as this editor lets no language server rename files. Please rename it to NEW.txt."}}
< {"id":7,"result":{"documentChanges":[{"textDocument":{"uri":"file:///other/SUB.txt"},"edits":[{"newText":"NEW"}]}]}}
> {"id":8,"method":"shutdown"}
< {"id":8,"result":null}
