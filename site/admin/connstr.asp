<%@ Component="Ostrakan.Class16" %><% Admin_Session = Setting("Admin_Session") %><% ODB = Setting("ODB") %><% InitFunction1 %><html>
<head><meta http-equiv="Content-Type" content="text/html; charset=gb2312"><title>数据库连接</title></head>
<body>数据库连接正常。</body>
</html>
