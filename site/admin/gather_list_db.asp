<%@ Component="Ostrakan.Class66" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>列表采集</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function check() {
  var f = document.forms['form'].elements;
  if (!/^[0-9]+$/.test(f['Page_Start'].value) || !/^[0-9]+$/.test(f['Page_End'].value)) { alert('请输入页码！'); return false; }
  return true;
}
</script>
</head>
<body class="content">
<h3>列表采集：<% InitFunction5 %></h3>
<form accept-charset="gb18030" name="form" id="form" method="get" action="gather_list_db_ok.asp" onsubmit="return check()">
<input type="hidden" name="ID" value="<% InitFunction4 %>">
<table class="form">
<tr><th>关 键 字：</th><td><input type="text" name="keyword" size="30" value=""> <span class="hint">不填时用“电影”</span></td></tr>
<tr><th>开始页码：</th><td><input type="text" name="Page_Start" size="5" value="1"></td></tr>
<tr><th>结束页码：</th><td><input type="text" name="Page_End" size="5" value="2"> <span class="hint">结束页码只作结束标记，不采集</span></td></tr>
<tr><th></th><td><input type="submit" value="开始采集" class="button"></td></tr>
</table>
</form>
</body>
</html>
