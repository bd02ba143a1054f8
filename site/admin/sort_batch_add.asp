<%@ Component="Ostrakan.Class7" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><% InitFunction4 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>分类管理 - 批量添加</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function check() {
  if (document.forms['batch'].elements['sort_list'].value.replace(/\s/g, '') == '') { alert('请输入分类名称，每行一个！'); return false; }
  return true;
}
</script>
</head>
<body class="content">
<h3>分类管理 - 批量添加</h3>
<form accept-charset="gb18030" name="batch" id="batch" method="post" action="sort_batch_add_ok.asp" onsubmit="return check()">
<input type="hidden" name="sort_id" value="<% InitFunction5 %>">
<table class="form">
<tr><th>添加位置：</th><td><%= locality %></td></tr>
<% InitFunction6 %>
<tr><th>分类名称：</th><td><textarea name="sort_list" cols="40" rows="15"></textarea><br><span class="hint">每行一个分类名称；每一行（包括空行）都会成为一个分类。</span></td></tr>
<tr><th></th><td><input type="submit" value="批量添加" class="button"> <input type="reset" value="重写" class="button"></td></tr>
</table>
</form>
</body>
</html>
